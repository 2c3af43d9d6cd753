#pragma once

#include <QString>

namespace vantrel {

/// Returns the desktop file ("org.example.App.desktop") of the application that opens links of that
/// scheme, from the MIME associations of user and system; empty if there is none.
QString handlerForScheme(const QString& scheme);

}  // namespace vantrel

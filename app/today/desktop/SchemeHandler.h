#pragma once

#include <QString>

namespace vantrel {

/// The desktop file ("org.example.App.desktop") of the application that opens links of that scheme,
/// by the user's and the system's MIME associations; empty when none does.
QString handlerForScheme(const QString& scheme);

}  // namespace vantrel

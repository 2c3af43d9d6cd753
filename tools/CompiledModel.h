#pragma once

#include "ModelSource.h"
#include "platform/archive/PropertyList.h"

namespace vantrel {

/// Returns a version of the model as a keyed archive, the content of a .mom file.
Data archivedModel(const ModelVersion& version);

/// Returns the file name of a version, without its suffix.
std::string versionName(const ModelSource& source, const ModelVersion& version);

/// Returns the content of VersionInfo.plist: the current version, and each version's hashes.
PropertyList versionInfo(const ModelSource& source);

}  // namespace vantrel

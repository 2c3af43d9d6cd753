#pragma once

#include "ModelSource.h"
#include "platform/archive/PropertyList.h"

namespace vantrel {

/// A model's version as a keyed archive, the content of a .mom file.
Data archivedModel(const ModelVersion& version);

/// The file name of a version, without its suffix.
std::string versionName(const ModelSource& source, const ModelVersion& version);

/// What VersionInfo.plist says: the current version, and each version's hashes.
PropertyList versionInfo(const ModelSource& source);

}  // namespace vantrel

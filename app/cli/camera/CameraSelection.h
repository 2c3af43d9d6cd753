#pragma once

#include <memory>
#include <string>

#include "base/Error.h"
#include "objectstore/ManagedObjectContext.h"
#include "store/CustomCamera.h"

namespace vantrel::cli {

/// Every camera by model.
Expected<CustomCamera::Cameras> allCameras(ManagedObjectContext& context);

/// The camera that a person names: by model, in any case and spacing where that is unambiguous, by
/// object URI, by unique identifier or a prefix of that of at least four characters. kExitMissing
/// when there is none; kExitUsage, with the candidates, when there are several.
Expected<std::shared_ptr<CustomCamera>> cameraNamed(ManagedObjectContext& context,
                                                    const std::string& text);

}  // namespace vantrel::cli

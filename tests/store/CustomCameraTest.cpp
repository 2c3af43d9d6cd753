#include "store/CustomCamera.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/TestStore.h"

namespace vantrel {
namespace {

using test::OpenStore;
using testing::ElementsAre;

std::shared_ptr<CustomCamera> insertCamera(OpenStore& store) {
  return std::dynamic_pointer_cast<CustomCamera>(store.context.insertNewObject("CustomCamera"));
}

class CustomCameraTest : public test::StoreTest {
 protected:
  OpenStore store_{file_};
};

// Every step rounded to single precision by Python's struct module.
TEST_F(CustomCameraTest, DerivesOpticalValuesInSinglePrecision) {
  struct Case {
    const char* name;
    std::optional<float> width, height, coc;
    float diagonal, calculated, CoC, cropFactor;
  };
  const std::vector<Case> cases = {
      {"36 x 24", 36.F, 24.F, {}, 43.2666168F, 0.0300462618F, 0.0300462618F, 1.F},
      {"23.6 x 15.7", 23.6F, 15.7F, {}, 28.3451939F, 0.019684162F, 0.019684162F, 1.52641809F},
      {"0 is a choice", 36.F, 24.F, 0.F, 43.2666168F, 0.0300462618F, 0.F, 1.F},
      {"no height", 24.F, {}, {}, 24.F, 0.0166666675F, 0.0166666675F, 1.80277574F},
      {"no sizes", {}, {}, {}, 0.F, 0.F, 0.F, 0.F},
      {"too small to be squared", 1e-25F, 1e-25F, {}, 0.F, 0.F, 0.F, 0.F},
  };
  const auto camera = insertCamera(store_);
  ASSERT_TRUE(camera);
  for (const auto& row : cases) {
    SCOPED_TRACE(row.name);
    camera->setSensorWidth(row.width);
    camera->setSensorHeight(row.height);
    camera->setCoc(row.coc);
    EXPECT_EQ(camera->sensorDiagonal(), row.diagonal);
    EXPECT_EQ(camera->calculateCocValue(), row.calculated);
    EXPECT_EQ(camera->CoC(), row.CoC);
    EXPECT_EQ(camera->cropFactor(), row.cropFactor);
  }
}

TEST_F(CustomCameraTest, KeepsTheLensOfACameraThatHasAnIdentifier) {
  const auto camera = insertCamera(store_);
  const auto identifier = camera->uniqueIdentifier();
  ASSERT_TRUE(identifier);
  EXPECT_EQ(identifier->size(), 36U);
  camera->setValueForKey(2.8, "aperture");
  camera->awakeFromInsert();
  EXPECT_EQ(camera->valueForKey("aperture"), Value(double{2.8F}));
  EXPECT_EQ(camera->uniqueIdentifier(), identifier);
  camera->setValueForKey({}, "uniqueIdentifier");
  camera->awakeFromInsert();
  EXPECT_EQ(camera->valueForKey("aperture"), Value());
  EXPECT_NE(camera->uniqueIdentifier(), identifier);
}

TEST_F(CustomCameraTest, FindsCamerasByModel) {
  const auto first = insertCamera(store_);
  const auto second = insertCamera(store_);
  const auto nameless = insertCamera(store_);
  first->setModel("Zeta 1");
  second->setModel("Alpha 7");
  ASSERT_TRUE(store_.context.save());
  EXPECT_THAT(*CustomCamera::loadCustomCamerasInManagedObjectContext(store_.context),
              ElementsAre(nameless, second, first));
  EXPECT_EQ(CustomCamera::loadCameraWithModel("Alpha 7", store_.context), second);
  EXPECT_EQ(CustomCamera::loadCameraWithModel("alpha 7", store_.context), nullptr);
  EXPECT_FALSE(CustomCamera::existsCameraWithModel(*second, store_.context));
  first->setModel("Alpha 7");
  EXPECT_TRUE(CustomCamera::existsCameraWithModel(*second, store_.context)) << "not even saved";
  EXPECT_EQ(CustomCamera::loadCameraWithModel("Alpha 7", store_.context), first);
  insertCamera(store_);
  EXPECT_FALSE(CustomCamera::existsCameraWithModel(*nameless, store_.context))
      << "cameras without a model do not share one";

  OpenStore missing(directory_ / "no/Vantrel.sqlite");
  EXPECT_EQ(CustomCamera::loadCustomCamerasInManagedObjectContext(missing.context), std::nullopt);
}

}  // namespace
}  // namespace vantrel

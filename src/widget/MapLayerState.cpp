#include "widget/MapLayerState.h"

namespace vantrel {

namespace {

constexpr std::string_view kVisibleKey = "isVisible";

}  // namespace

void MapLayerState::encodeWithCoder(KeyedArchiver::Object coder) const {
  coder.encodeBool(isVisible_, kVisibleKey);
}

MapLayerState MapLayerState::initWithCoder(const KeyedUnarchiver::Node& coder) {
  MapLayerState state;
  state.isVisible_ = coder.decodeBoolForKey(kVisibleKey);
  return state;
}

}  // namespace vantrel

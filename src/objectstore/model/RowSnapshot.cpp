#include "objectstore/model/RowSnapshot.h"

#include <algorithm>
#include <bit>
#include <cstring>

namespace vantrel {

namespace {

constexpr std::size_t kHeader = 2;
constexpr std::size_t kBits = 64;

std::size_t firstSlot(std::size_t slotCount) {
  return kHeader + (slotCount + kBits - 1) / kBits;
}

}  // namespace

const std::uint64_t& RowSnapshot::word(std::size_t slot) const {
  return words_[firstSlot(words_[1]) + slot];
}

bool RowSnapshot::isAbsent(std::size_t slot) const {
  return !words_ || !(words_[kHeader + slot / kBits] >> (slot % kBits) & 1);
}

std::int64_t RowSnapshot::integer(std::size_t slot) const {
  return static_cast<std::int64_t>(word(slot));
}

double RowSnapshot::real(std::size_t slot) const {
  return std::bit_cast<double>(word(slot));
}

std::string_view RowSnapshot::text(std::size_t slot) const {
  const std::uint64_t place = word(slot);
  const char* bytes = reinterpret_cast<const char*>(&words_[firstSlot(words_[1]) + words_[1]]);
  return {bytes + (place >> 32), place & 0xffffffff};
}

RowBuilder::RowBuilder(std::size_t slotCount)
    : slotCount_(slotCount), slotsAt_(firstSlot(slotCount)), words_(slotsAt_ + slotCount) {}

void RowBuilder::setWord(std::size_t slot, std::uint64_t word) {
  words_[slotsAt_ + slot] = word;
  words_[kHeader + slot / kBits] |= std::uint64_t{1} << (slot % kBits);
}

void RowBuilder::setInteger(std::size_t slot, std::int64_t value) {
  setWord(slot, static_cast<std::uint64_t>(value));
}

void RowBuilder::setReal(std::size_t slot, double value) {
  setWord(slot, std::bit_cast<std::uint64_t>(value));
}

void RowBuilder::setText(std::size_t slot, std::string_view value) {
  // SQLite holds no value of 2 GiB, so that both halves fit.
  setWord(slot, std::uint64_t{texts_.size()} << 32 | value.size());
  texts_.append(value);
}

RowSnapshot RowBuilder::finish(std::int64_t version) {
  words_[0] = static_cast<std::uint64_t>(version);
  words_[1] = slotCount_;
  const std::size_t textWords = (texts_.size() + sizeof(std::uint64_t) - 1) / sizeof(std::uint64_t);
  RowSnapshot row;
  row.words_ = std::make_unique_for_overwrite<std::uint64_t[]>(words_.size() + textWords);
  std::copy(words_.begin(), words_.end(), row.words_.get());
  if (!texts_.empty()) std::memcpy(&row.words_[words_.size()], texts_.data(), texts_.size());
  std::fill(words_.begin(), words_.end(), 0);
  texts_.clear();
  return row;
}

}  // namespace vantrel

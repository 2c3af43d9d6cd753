#include "today/sheet/PlanSheetContent.h"

#include <QString>
#include <cmath>

#include "base/StringFormat.h"
#include "platform/qt/QtParagraph.h"
#include "platform/text/Locale.h"
#include "platform/text/NumberFormatter.h"
#include "store/PlanLink.h"
#include "today/sheet/PlanDescription.h"

namespace vantrel {

namespace {

constexpr qsizetype kMostTitle = 400;
constexpr qsizetype kMostNotes = 8000;
constexpr int kTitleLines = 6;
constexpr int kNotesLines = 200;
constexpr double kLargestLatitude = 90;
constexpr double kLargestLongitude = 180;

std::string beginning(const std::string& text, qsizetype most) {
  // Cuts bytes first, so that a text of megabytes is not decoded.
  QString shown =
      QtParagraph::textToShow(std::string_view(text).substr(0, static_cast<std::size_t>(4 * most)));
  if (shown.size() <= most) return shown.trimmed().toStdString();
  qsizetype kept = most;
  if (shown.at(kept).isLowSurrogate()) --kept;
  return QtParagraph::textToShow((shown.left(kept) + QChar(0x2026)).toStdString()).toStdString();
}

bool isOnEarth(double latitude, double longitude) {
  return std::abs(latitude) <= kLargestLatitude && std::abs(longitude) <= kLargestLongitude;
}

std::string pictureCount(std::size_t number) {
  if (number == 0) return localized("today_sheet_no_pictures");
  NumberFormatter formatter;
  formatter.setLocale(Locale::currentLocale());
  return formatter.stringFromNumber(static_cast<double>(number));
}

}  // namespace

std::optional<PlanPlace> placeOfPlan(const Planning& plan) {
  const auto latitude = plan.latitude();
  const auto longitude = plan.longitude();
  if (!latitude || !longitude || !isOnEarth(*latitude, *longitude)) return std::nullopt;
  constexpr int kShownDecimals = 5;
  constexpr int kLinkDecimals = 7;
  return PlanPlace{
      decimalText(*latitude, kShownDecimals) + ", " + decimalText(*longitude, kShownDecimals),
      "geo:" + decimalText(*latitude, kLinkDecimals) + "," +
          decimalText(*longitude, kLinkDecimals)};
}

std::string isolatedCoordinates(const PlanPlace& place) {
  return "\u2066" + place.coordinates + "\u2069";
}

PlanSheetContent::PlanSheetContent(const Planning& plan)
    : title(beginning(plan.name().value_or(""), kMostTitle)), link(deepLink(plan)) {
  using Kind = CardContent::Text::Kind;
  if (title.empty()) title = localized("today_plan_untitled");
  texts.push_back({Kind::kTitle, title, kTitleLines});
  const auto add = [this](std::string_view caption, Kind kind, const std::string& text,
                          int maximumLines = 0) {
    texts.push_back({Kind::kCaption, localized(caption)});
    texts.push_back({kind, text, maximumLines});
  };
  if (const auto when = PlanDescription().when(plan)) {
    texts.push_back({Kind::kWhen, when->there});
    texts.push_back({Kind::kZone, when->zone + " · " + when->day});
    if (when->here) add("today_sheet_here", Kind::kDetail, *when->here);
  } else {
    texts.push_back({Kind::kWhen, localized("today_plan_no_date")});
  }
  place = placeOfPlan(plan);
  if (place) add("today_sheet_place", Kind::kPlace, isolatedCoordinates(*place));
  add("today_sheet_pictures", Kind::kDetail, pictureCount(plan.imageCount()));
  if (const auto notes = beginning(plan.notes().value_or(""), kMostNotes); !notes.empty()) {
    add("today_sheet_notes", Kind::kDetail, notes, kNotesLines);
  }
}

void PlanSheetContent::describe(CardContent& content) const {
  content.action = localized("today_copy_link");
  content.texts = texts;
}

}  // namespace vantrel

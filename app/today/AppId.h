#pragma once

namespace vantrel {

/// The name that the window, its desktop entry, its icons and its place on the message bus share.
inline constexpr const char* kApplicationId = "org.vantrel.today";
/// The desktop entry that opens links with this program.
inline constexpr const char* kLinkEntry = "org.vantrel.today.link.desktop";
/// The action on the message bus after the setting of reminders has changed.
inline constexpr const char* kUpdateReminders = "update-reminders";

}  // namespace vantrel

#include "today/desktop/SchemeHandler.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>
#include <map>
#include <string>

#include "support/Guards.h"
#include "today/desktop/LinkOpener.h"

namespace vantrel {
namespace {

TEST(SchemeHandler, FindsWhatTheDesktopWouldStart) {
  constexpr auto kUserList = "config/mimeapps.list";
  constexpr auto kGnomeList = "config/gnome-mimeapps.list";
  constexpr auto kSystemList = "system/applications/mimeapps.list";
  constexpr auto kCache = "system/applications/mimeinfo.cache";
  const std::string defaults = "[Default Applications]\nx-scheme-handler/vantrel=";
  const std::string added = "[Added Associations]\nx-scheme-handler/vantrel=";
  const std::string cached = "[MIME Cache]\nx-scheme-handler/vantrel=";
  const struct {
    const char* name;
    std::map<std::string, std::string> files;
    const char* expected;
  } cases[] = {
      {"none", {{kUserList, "[Default Applications]\nx-scheme-handler/https=a.desktop\n"}}, ""},
      {"user's default", {{kUserList, defaults + "a.desktop;\n"}}, "a.desktop"},
      {"user before system",
       {{kSystemList, defaults + "b.desktop\n"}, {kUserList, defaults + "a.desktop\n"}},
       "a.desktop"},
      {"this desktop before all",
       {{kUserList, defaults + "a.desktop\n"}, {kGnomeList, defaults + "b.desktop\n"}},
       "b.desktop"},
      {"first that is installed",
       {{kUserList, defaults + "gone.desktop;b.desktop;\n"}},
       "b.desktop"},
      {"default before added",
       {{kUserList, added + "a.desktop\n"}, {kSystemList, defaults + "b.desktop\n"}},
       "b.desktop"},
      {"only added", {{kUserList, added + "a.desktop\n"}}, "a.desktop"},
      {"declared by an application",
       {{kCache, cached + "org-sub.desktop;a.desktop;\n"}},
       "org-sub.desktop"},
      {"removed application", {{kCache, cached + "gone.desktop;\n"}}, ""},
      {"path instead of a name", {{kUserList, defaults + "../applications/a.desktop\n"}}, ""},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    const test::TemporaryDirectory home;
    const test::EnvironmentGuard config("XDG_CONFIG_HOME", (home / "config").string());
    const test::EnvironmentGuard configs("XDG_CONFIG_DIRS", (home / "none").string());
    const test::EnvironmentGuard data("XDG_DATA_HOME", (home / "data").string());
    const test::EnvironmentGuard datas("XDG_DATA_DIRS", (home / "system").string());
    const test::EnvironmentGuard desktop("XDG_CURRENT_DESKTOP", "ubuntu:GNOME");
    for (const auto* folder : {"config", "data/applications", "system/applications/org"}) {
      std::filesystem::create_directories(home / folder);
    }
    test::writeFile(home / "data/applications/a.desktop", "");
    test::writeFile(home / "system/applications/b.desktop", "");
    test::writeFile(home / "system/applications/org/sub.desktop", "");
    for (const auto& [name, content] : c.files) test::writeFile(home / name, content);
    // Must not be waited for.
    ASSERT_EQ(::mkfifo((home / "config/ubuntu-mimeapps.list").c_str(), 0600), 0);
    EXPECT_EQ(handlerForScheme(QStringLiteral("vantrel")).toStdString(), c.expected);
    if (*c.expected != '\0') continue;
    // Without a handler, this program shows plans, but no places.
    std::string shown;
    LinkOpener opener([&](const std::string& link) { return (shown = link) == "vantrel://a"; });
    EXPECT_EQ(opener.open("geo:1,2"), LinkOpener::Result::kNoHandler);
    EXPECT_EQ(shown, "");
    EXPECT_EQ(opener.open("vantrel://a"), LinkOpener::Result::kOpened);
    EXPECT_EQ(opener.open("vantrel://b"), LinkOpener::Result::kNoPlan);
  }
}

}  // namespace
}  // namespace vantrel

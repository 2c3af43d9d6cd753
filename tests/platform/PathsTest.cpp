#include "platform/Paths.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <fstream>

#include "support/Guards.h"

namespace vantrel {
namespace {

using test::EnvironmentGuard;
using test::TemporaryDirectory;

TEST(Paths, FollowTheBaseDirectoryRules) {
  struct Case {
    const char* name;
    std::optional<std::string> value;
    std::string container, config, cache, state;
  };
  const Case cases[] = {
      {"unset", std::nullopt, "/h/.local/share/vantrel/group.vantrel.vantrel", "/h/.config/vantrel",
       "/h/.cache/vantrel", "/h/.local/state/vantrel"},
      {"set", "/x y", "/x y/vantrel/group.vantrel.vantrel", "/x y/vantrel", "/x y/vantrel",
       "/x y/vantrel"},
      {"relative", "x", "/h/.local/share/vantrel/group.vantrel.vantrel", "/h/.config/vantrel",
       "/h/.cache/vantrel", "/h/.local/state/vantrel"},
  };
  const EnvironmentGuard home("HOME", "/h");
  const EnvironmentGuard container("VANTREL_GROUP_CONTAINER", std::nullopt);
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    const EnvironmentGuard data("XDG_DATA_HOME", c.value);
    const EnvironmentGuard config("XDG_CONFIG_HOME", c.value);
    const EnvironmentGuard cache("XDG_CACHE_HOME", c.value);
    const EnvironmentGuard state("XDG_STATE_HOME", c.value);
    EXPECT_EQ(paths::groupContainer(), c.container);
    EXPECT_EQ(paths::configDirectory(), c.config);
    EXPECT_EQ(paths::cacheDirectory(), c.cache);
    EXPECT_EQ(paths::stateDirectory(), c.state);
    const EnvironmentGuard own("VANTREL_GROUP_CONTAINER", "/g");
    EXPECT_EQ(paths::groupContainer(), "/g");
  }
  const EnvironmentGuard nowhere("HOME", std::nullopt);
  const EnvironmentGuard data("XDG_DATA_HOME", "");
  EXPECT_FALSE(paths::groupContainer());
  EXPECT_FALSE(paths::documentDirectory());
}

TEST(Paths, FindTheDocumentsOfTheDesktop) {
  struct Case {
    const char* name;
    const char* content;
    std::string folder;
  };
  const Case cases[] = {
      {"below the home folder", "XDG_DOCUMENTS_DIR=\"$HOME/Dokumente\"\n", "/h/Dokumente"},
      {"absolute", "XDG_DOCUMENTS_DIR=\"/srv/my docs\"\n", "/srv/my docs"},
      {"home itself", "XDG_DOCUMENTS_DIR=\"$HOME/\"", "/h/"},
      {"escapes", R"(XDG_DOCUMENTS_DIR="$HOME/a\"b\\c\$d")", "/h/a\"b\\c$d"},
      {"comment and others", "# XDG_DOCUMENTS_DIR=\"/a\"\nXDG_MUSIC_DIR=\"/m\"\n", "/h/Documents"},
      {"last one", "XDG_DOCUMENTS_DIR=\"/a\"\n XDG_DOCUMENTS_DIR=\"/b\"\n", "/b"},
      {"relative", "XDG_DOCUMENTS_DIR=\"docs\"\n", "/h/Documents"},
      {"open quote", "XDG_DOCUMENTS_DIR=\"/a\n", "/h/Documents"},
      {"no quotes", "XDG_DOCUMENTS_DIR=/a\n", "/h/Documents"},
  };
  const TemporaryDirectory config;
  const EnvironmentGuard home("HOME", "/h");
  const EnvironmentGuard configHome("XDG_CONFIG_HOME", config.path());
  EXPECT_EQ(paths::documentDirectory(), "/h/Documents");
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    test::writeFile(config / "user-dirs.dirs", c.content);
    EXPECT_EQ(paths::documentDirectory(), c.folder);
  }
}

TEST(Paths, MakePrivateFolders) {
  const TemporaryDirectory directory;
  const auto folder = directory / "a" / "b";
  EXPECT_TRUE(paths::createPrivateDirectory(folder));
  EXPECT_TRUE(paths::createPrivateDirectory(folder / ""));
  for (const auto& path : {directory / "a", folder}) {
    struct stat info {};
    ASSERT_EQ(::stat(path.c_str(), &info), 0);
    EXPECT_EQ(info.st_mode & 0777U, 0700U);
  }
  test::writeFile(directory / "file", "");
  EXPECT_FALSE(paths::createPrivateDirectory(directory / "file"));
  EXPECT_FALSE(paths::createPrivateDirectory(directory / "file" / "below"));
}

}  // namespace
}  // namespace vantrel

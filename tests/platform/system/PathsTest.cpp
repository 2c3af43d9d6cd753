#include "platform/system/Paths.h"

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
    std::optional<std::string> value;
    std::string data, config, cache, state;
  };
  const Case unset = {std::nullopt, "/h/.local/share/", "/h/.config/", "/h/.cache/",
                      "/h/.local/state/"};
  Case relative = unset;
  relative.value = "x";
  const Case cases[] = {unset, relative, {"/x y", "/x y/", "/x y/", "/x y/", "/x y/"}};
  const EnvironmentGuard home("HOME", "/h");
  const EnvironmentGuard container("VANTREL_GROUP_CONTAINER", std::nullopt);
  for (const auto& c : cases) {
    SCOPED_TRACE(c.data);
    const EnvironmentGuard data("XDG_DATA_HOME", c.value);
    const EnvironmentGuard config("XDG_CONFIG_HOME", c.value);
    const EnvironmentGuard cache("XDG_CACHE_HOME", c.value);
    const EnvironmentGuard state("XDG_STATE_HOME", c.value);
    EXPECT_EQ(paths::groupContainer(), c.data + "vantrel/group.vantrel.vantrel");
    EXPECT_EQ(paths::configDirectory(), c.config + "vantrel");
    EXPECT_EQ(paths::cacheDirectory(), c.cache + "vantrel");
    EXPECT_EQ(paths::stateDirectory(), c.state + "vantrel");
    const EnvironmentGuard own("VANTREL_GROUP_CONTAINER", "/g");
    EXPECT_EQ(paths::groupContainer(), "/g");
  }
  const EnvironmentGuard nowhere("HOME", std::nullopt);
  const EnvironmentGuard data("XDG_DATA_HOME", "");
  EXPECT_FALSE(paths::groupContainer());
  EXPECT_FALSE(paths::documentDirectory());
}

TEST(Paths, FindTheDocumentsOfTheDesktop) {
  const std::pair<const char*, const char*> cases[] = {
      {"XDG_DOCUMENTS_DIR=\"$HOME/Dokumente\"\n", "/h/Dokumente"},
      {"XDG_DOCUMENTS_DIR=\"/srv/my docs\"\n", "/srv/my docs"},
      {"XDG_DOCUMENTS_DIR=\"$HOME/\"", "/h/"},
      {R"(XDG_DOCUMENTS_DIR="$HOME/a\"b\\c\$d")", "/h/a\"b\\c$d"},
      {"# XDG_DOCUMENTS_DIR=\"/a\"\nXDG_MUSIC_DIR=\"/m\"\n", "/h/Documents"},
      {"XDG_DOCUMENTS_DIR=\"/a\"\n XDG_DOCUMENTS_DIR=\"/b\"\n", "/b"},
      {"XDG_DOCUMENTS_DIR=\"docs\"\n", "/h/Documents"},
      {"XDG_DOCUMENTS_DIR=\"/a\n", "/h/Documents"},
      {"XDG_DOCUMENTS_DIR=/a\n", "/h/Documents"},
  };
  const TemporaryDirectory config;
  const EnvironmentGuard home("HOME", "/h");
  const EnvironmentGuard configHome("XDG_CONFIG_HOME", config.path());
  EXPECT_EQ(paths::documentDirectory(), "/h/Documents");
  for (const auto& [content, folder] : cases) {
    test::writeFile(config / "user-dirs.dirs", content);
    EXPECT_EQ(paths::documentDirectory(), folder) << content;
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

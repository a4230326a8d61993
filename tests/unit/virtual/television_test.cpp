// The virtual television's directory: where it is, what is in a new one, and what it takes and refuses.
#include <signal.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <functional>
#include <thread>
#include <vector>

#include "unit/virtual/television.h"

namespace orvex::virtual_tv {
namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;
using Cause = TelevisionError::Cause;

// Changes one variable for a scope.
class Variable {
public:
  Variable(const char* name, const char* value) : m_Name(name) {
    const char* const before = getenv(name);
    m_Had = before != nullptr;
    m_Before = m_Had ? before : "";
    value == nullptr ? unsetenv(name) : setenv(name, value, 1);
  }
  ~Variable() { m_Had ? setenv(m_Name, m_Before.c_str(), 1) : unsetenv(m_Name); }
  Variable(const Variable&) = delete;
  Variable& operator=(const Variable&) = delete;

private:
  const char* m_Name;
  bool m_Had;
  std::string m_Before;
};

TEST(TelevisionPlace, IsNamedByTheFirstVariableThatIsSet) {
  const struct {
    const char* television;
    const char* state;
    const char* home;
    std::string expected;
  } rows[] = {
      {"/a", "/b", "/c", "/a"},
      {nullptr, "/b", "/c", "/b/orvex-tv"},
      {"", "/b", "/c", "/b/orvex-tv"},
      {nullptr, nullptr, "/c", "/c/.local/state/orvex-tv"},
      {nullptr, "", "/c", "/c/.local/state/orvex-tv"},
      {nullptr, nullptr, nullptr, "/tmp/orvex-tv-" + std::to_string(getuid())},
      {"relative", nullptr, nullptr, (fs::current_path() / "relative").string()},
  };
  for (const auto& row : rows) {
    const Variable television("ORVEX_TV", row.television);
    const Variable state("XDG_STATE_HOME", row.state);
    const Variable home("HOME", row.home);
    EXPECT_EQ(Television::DirectoryFromEnvironment(), row.expected);
  }
}

TEST(TelevisionPlace, OfRoomAndFaultsIsTheDirectoryUnlessAVariableNamesAFile) {
  const Television television("/a");
  EXPECT_EQ(television.RoomFile(), "/a/room.json");
  EXPECT_EQ(television.FaultsFile(), "/a/faults.json");
  const Variable room("ORVEX_TV_ROOM", "/b/hall.json");
  const Variable faults("ORVEX_TV_FAULTS", "/c/deaf.json");
  EXPECT_EQ(television.RoomFile(), "/b/hall.json");
  EXPECT_EQ(television.FaultsFile(), "/c/deaf.json");
}

TEST(TelevisionPlace, ThatCannotBeMadeIsAProblemAndNoEndOfTheProcess) {
  testing::GTEST_FLAG(death_test_style) = "threadsafe";  // in a process that has no television yet
  const auto use = [] {
    setenv("ORVEX_TV", "/proc/version/tv", 1);
    const Television& television = Television::Instance();
    EXPECT_EQ(Television::InstanceProblem(), "cannot make the directory /proc/version/tv: Not a directory");
    EXPECT_THROW(television.Get("sound/volume"), TelevisionError);
    EXPECT_THROW(television.Set("sound/volume", "1"), TelevisionError);
    std::exit(testing::Test::HasFailure() ? 1 : 0);
  };
  EXPECT_EXIT(use(), testing::ExitedWithCode(0), "");
}

// What `work` throws.
TelevisionError ErrorOf(const std::function<void()>& work) {
  try {
    work();
  } catch (const TelevisionError& error) {
    return error;
  }
  ADD_FAILURE() << "no error";
  return {Cause::kMissing, ""};
}

class TelevisionDirectory : public TelevisionTest {
protected:
  const Television& m_Television = Television::Instance();
};

TEST_F(TelevisionDirectory, IsMadeWithEveryValueAtItsDefault) {
  for (const TelevisionValue& value : TelevisionValues()) {
    EXPECT_EQ(Content(value.name), value.defaultText + "\n") << value.name;
    EXPECT_EQ(m_Television.Get(value.name), value.defaultText) << value.name;
  }
  EXPECT_EQ(m_Television.GetNumber("sound/volume"), 15);
  EXPECT_EQ(m_Television.GetNumber("delay/spdif"), 100);
  EXPECT_EQ(Content("room.json"), "{}\n");
}

TEST_F(TelevisionDirectory, KeepsWhatIsThereAndMakesWhatIsMissing) {
  Echo("sound/volume", "42\n");
  Remove("delay");
  m_Television.Create();
  EXPECT_EQ(m_Television.Get("sound/volume"), "42");
  EXPECT_EQ(m_Television.Get("delay/spdif"), "100");
}

TEST_F(TelevisionDirectory, LeavesAMissingQueryMissingUnlessTheFolderIsNew) {
  Remove("tv/brand");
  m_Television.Create();
  EXPECT_FALSE(fs::exists(Folder() / "tv/brand"));
  Remove("tv");
  m_Television.Create();
  EXPECT_EQ(m_Television.Get("tv/brand"), "Example");
}

TEST_F(TelevisionDirectory, TakesValuesUpToBothBounds) {
  const struct {
    const char* name;
    const char* text;
  } rows[] = {{"sound/mute", "0"},           {"sound/mute", "1"},
              {"sound/volume", "100"},       {"sound/speaker", "-2147483648"},
              {"delay/spdif", "4294967295"}, {"settings/db/some/other/key", "2147483647"},
              {"tv/brand", "Größe 7"},       {"tv/brand", ""}};
  for (const auto& row : rows) {
    m_Television.Set(row.name, std::string(" ") + row.text + "\n");
    EXPECT_EQ(m_Television.Get(row.name), row.text) << row.name;
    EXPECT_EQ(Content(row.name), std::string(row.text) + "\n") << row.name;
  }
}

TEST_F(TelevisionDirectory, RefusesWhatIsNoValueAndChangesNothing) {
  const struct {
    const char* name;
    const char* text;
    Cause cause;
    const char* expected;
  } rows[] = {
      {"sound/mute", "2", Cause::kBadValue, "sound/mute: \"2\": expected an integer from 0 to 1"},
      {"sound/volume", "101", Cause::kBadValue, "\"101\": expected an integer from 0 to 100"},
      {"sound/volume", "-1", Cause::kBadValue, "\"-1\""},
      {"sound/volume", "", Cause::kBadValue, "\"\""},
      {"sound/volume", "12x", Cause::kBadValue, "\"12x\""},
      {"sound/volume", "1 2", Cause::kBadValue, "\"1 2\""},
      {"sound/volume", "0x10", Cause::kBadValue, "\"0x10\""},
      {"sound/volume", "1.5", Cause::kBadValue, "\"1.5\""},
      {"delay/spdif", "4294967296", Cause::kBadValue, "from 0 to 4294967295 ms"},
      {"delay/spdif", "99999999999999999999", Cause::kBadValue, "expected an integer"},
      {"settings/db/key", "2147483648", Cause::kBadValue, "from -2147483648 to 2147483647"},
      {"tv/brand", "two\nlines", Cause::kBadValue, "expected one line of UTF-8 text"},
      {"tv/brand", "\033[2J", Cause::kBadValue, "tv/brand: \"\\x1b[2J\": expected one line of UTF-8 text"},
      {"tv/brand", "B\xF6", Cause::kBadValue, "tv/brand: \"B\\xf6\": expected one line of UTF-8 text"},
      {"sound/loudness", "1", Cause::kUnknownName, "\"sound/loudness\" is no value of a television"},
      {"settings/../sound/mute", "1", Cause::kUnknownName, "no value"},
      {"settings/db//key", "1", Cause::kUnknownName, "no value"},
      {"settings/.hidden", "1", Cause::kUnknownName, "no value"},
      {"settings/", "1", Cause::kUnknownName, "no value"},
      {"/etc/passwd", "1", Cause::kUnknownName, "no value"},
      {"", "1", Cause::kUnknownName, "no value"},
  };
  for (const auto& row : rows) {
    const std::string before = Content(row.name);
    const TelevisionError error = ErrorOf([&] { m_Television.Set(row.name, row.text); });
    EXPECT_EQ(error.GetCause(), row.cause) << row.name << " " << row.text;
    EXPECT_THAT(error.what(), HasSubstr(row.expected));
    EXPECT_EQ(Content(row.name), before) << row.name;
  }
}

TEST_F(TelevisionDirectory, NamesFileValueAndExpectationOfABadFile) {
  Echo("sound/volume", "loud\n");
  const TelevisionError error = ErrorOf([&] { m_Television.GetNumber("sound/volume"); });
  EXPECT_EQ(error.GetCause(), Cause::kBadValue);
  EXPECT_EQ(error.what(), (Folder() / "sound/volume").string() + ": \"loud\": expected an integer from 0 to 100");
}

TEST_F(TelevisionDirectory, TellsMissingFromUnreadable) {
  Remove("sound/volume");
  Remove("sound/mute");
  fs::create_directory(Folder() / "sound/mute");
  EXPECT_EQ(ErrorOf([&] { m_Television.Get("sound/volume"); }).GetCause(), Cause::kMissing);
  EXPECT_EQ(ErrorOf([&] { m_Television.Get("sound/mute"); }).GetCause(), Cause::kInaccessible);
}

TEST_F(TelevisionDirectory, RefusesAFileWithoutEndAsAValue) {
  Echo("sound/volume", std::string(100000, '1'));
  EXPECT_THROW(m_Television.Get("sound/volume"), TelevisionError);
  Echo("tv/brand", std::string(100000, 'x'));
  EXPECT_THROW(m_Television.Get("tv/brand"), TelevisionError);
}

TEST_F(TelevisionDirectory, NamesThePathThatCannotBeMade) {
  const fs::path impossible = Folder() / "room.json" / "tv";  // below a file
  const TelevisionError error = ErrorOf([&] { Television(impossible).Create(); });
  EXPECT_EQ(error.GetCause(), Cause::kInaccessible);
  EXPECT_THAT(error.what(), HasSubstr(impossible.string() + ": Not a directory"));
  EXPECT_THROW(Television(impossible).Set("sound/mute", "1"), TelevisionError);
  EXPECT_THROW(Television(impossible).Get("sound/mute"), TelevisionError);
}

TEST_F(TelevisionDirectory, IsItsOwnersAlone) {
  Remove("");
  const mode_t before = umask(0);
  m_Television.Create();
  umask(before);
  EXPECT_EQ(fs::status(Folder()).permissions(), fs::perms(0700));
}

// Files of more than three bytes cannot be written, as on a disk that is nearly full.
class FullDisk {
public:
  FullDisk() {
    signal(SIGXFSZ, SIG_IGN);
    getrlimit(RLIMIT_FSIZE, &m_Before);
    const rlimit limit{3, m_Before.rlim_max};
    setrlimit(RLIMIT_FSIZE, &limit);
  }
  ~FullDisk() { setrlimit(RLIMIT_FSIZE, &m_Before); }
  FullDisk(const FullDisk&) = delete;
  FullDisk& operator=(const FullDisk&) = delete;

private:
  rlimit m_Before{};
};

std::size_t EntriesIn(const fs::path& folder) {
  return static_cast<std::size_t>(std::distance(fs::directory_iterator(folder), fs::directory_iterator()));
}

TEST_F(TelevisionDirectory, IsMadeWholeOrNotAtAll) {
  const Television television(Folder() / "another/one");
  {
    const FullDisk full;
    EXPECT_THROW(television.Create(), TelevisionError);
  }
  EXPECT_EQ(EntriesIn(Folder() / "another"), 0U);
  television.Create();
  EXPECT_EQ(television.Get("tv/brand"), "Example");
  EXPECT_EQ(television.Get("delay/spdif"), "100");
}

TEST_F(TelevisionDirectory, HasAWholeFolderOfQueriesOrNone) {
  Remove("tv");
  {
    const FullDisk full;
    EXPECT_THROW(m_Television.Create(), TelevisionError);
  }
  EXPECT_FALSE(fs::exists(Folder() / "tv"));
  m_Television.Create();
  EXPECT_EQ(m_Television.Get("tv/brand"), "Example");
}

TEST_F(TelevisionDirectory, ThatSeveralMakeAtATimeIsMadeOnce) {
  const Television television(Folder() / "together");
  std::vector<std::thread> makers;
  for (int number = 0; number < 4; ++number) {
    makers.emplace_back([&] { television.Create(); });
  }
  for (std::thread& maker : makers) {
    maker.join();
  }
  EXPECT_EQ(television.Get("tv/codec"), "0");
  EXPECT_EQ(television.Get("delay/spdif"), "100");
  for (const auto& entry : fs::directory_iterator(Folder())) {
    EXPECT_NE(entry.path().filename().string().rfind(".together", 0), 0U) << entry;
  }
}

// The television of a user without a home, as another user may have put it there.
TEST(TelevisionPlace, InTmpMustBeThisUsersOwn) {
  constexpr uid_t kSomebody = 54321;
  constexpr uid_t kForeignUser = 12345;
  if (geteuid() != 0) {
    GTEST_SKIP() << "only root can be somebody without a television";
  }
  testing::GTEST_FLAG(death_test_style) = "threadsafe";
  const fs::path place = "/tmp/orvex-tv-" + std::to_string(kSomebody);
  const auto use = [&](const std::string& problem) {
    for (const char* const name : {"ORVEX_TV", "XDG_STATE_HOME", "HOME"}) {
      unsetenv(name);
    }
    ASSERT_EQ(setresuid(kSomebody, kSomebody, kSomebody), 0);
    EXPECT_THAT(Television::InstanceProblem(), HasSubstr(problem));
    EXPECT_THROW(Television(place).Get("tv/brand"), TelevisionError);
    EXPECT_THROW(Television(place).Set("tv/brand", "x"), TelevisionError);
    std::exit(testing::Test::HasFailure() ? 1 : 0);
  };
  const std::string refused = place.string() + ": expected a directory of this user";
  fs::remove_all(place);

  fs::create_directory(place);
  fs::permissions(place, fs::perms(0777));
  ASSERT_EQ(chown(place.c_str(), kForeignUser, kForeignUser), 0);
  EXPECT_EXIT(use(refused), testing::ExitedWithCode(0), "") << "a foreign directory";
  fs::remove_all(place);

  fs::create_symlink("/tmp", place);
  ASSERT_EQ(lchown(place.c_str(), kSomebody, kSomebody), 0);
  EXPECT_EXIT(use(refused), testing::ExitedWithCode(0), "") << "a link";
  fs::remove(place);
}

TEST_F(TelevisionDirectory, ShowsAReaderTheOldOrTheNewValueOnly) {
  std::atomic<bool> isDone{false};
  std::thread writer([&] {
    for (int round = 0; round < 300; ++round) {
      m_Television.Set("delay/spdif", round % 2 == 0 ? "4000000000" : "7");
    }
    isDone = true;
  });
  m_Television.Set("delay/spdif", "7");
  while (!isDone) {
    const std::int64_t delay = m_Television.GetNumber("delay/spdif");
    EXPECT_TRUE(delay == 7 || delay == 4000000000) << delay;
  }
  writer.join();
  std::size_t files = 0;
  for (const auto& entry : fs::directory_iterator(Folder() / "delay")) {
    EXPECT_EQ(entry.path().filename(), "spdif");
    ++files;
  }
  EXPECT_EQ(files, 1U);
}

}  // namespace
}  // namespace orvex::virtual_tv

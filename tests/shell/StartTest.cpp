#include "favourites/FavouritesStore.h"
#include "tests/support/program/Program.h"

#include <sys/resource.h>

#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>

namespace tarn::test {

namespace fs = std::filesystem;

// The program over a store file that something has happened to.
class Start : public ProgramTest {
protected:
  std::string contents() const {
    std::ifstream stream(dataHome.storeFile(), std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
  }
  void write(const std::string& bytes) const { std::ofstream(dataHome.storeFile(), std::ios::binary) << bytes; }
  void sql(const std::string& statement) const {
    const std::string command = "sqlite3 '" + dataHome.storeFile().string() + "' \"" + statement + "\"";
    EXPECT_EQ(std::system(command.c_str()), 0) << statement;
  }
};

TEST_F(Start, AStoreThatCannotBeOpenedIsReportedOnceAndNeverOverwritten) {
  // An empty file is a first start.
  fs::create_directories(dataHome.storeFile().parent_path());
  write("");
  open({{"local", 1}});
  see("local");
  const std::string whole = contents();
  const std::pair<std::string, std::function<void()>> faults[] = {
      {"not a database", [&] { write(std::string(20'000, '#')); }},
      {"damaged", [&] { write(std::string(whole).replace(4096, 2000, 2000, '\x7F')); }},
      {"newer version", [&] { sql("PRAGMA user_version = 2"); }},
      {"no ServerItemStorage.auth", [&] { sql("ALTER TABLE ServerItemStorage DROP COLUMN auth"); }},
      {"can't be written", [&] { fs::permissions(dataHome.storeFile(), fs::perms::owner_read); }},
      {"", [&] { fs::permissions(dataHome.storeFile(), fs::perms::none); }},
  };
  for (const auto& [reason, damage] : faults) {
    SCOPED_TRACE(reason);
    fs::permissions(dataHome.storeFile(), fs::perms::owner_read | fs::perms::owner_write);
    write(whole);
    damage();
    const std::string before = contents();
    alerts.clear();
    testing::internal::CaptureStdout();
    restart();
    EXPECT_EQ(testing::internal::GetCapturedStdout().find("Unresolved error "), 0U);
    ASSERT_EQ(alerts.shown().size(), 1U);
    for (const std::string& told : {dataHome.storeFile().string(), reason})
      EXPECT_NE(alerts.messages()[0].find(told), std::string::npos) << alerts.messages()[0];
    see(" | " + alerts.messages()[0]);

    // A new favourite is in the list, and a message says that it isn't in the store.
    openForm(window().btnNew);
    fillIn({"lost", "host", "1"});
    press(Qt::Key_Return);
    EXPECT_TRUE(screen().starts_with("lost | The change of your favourites could not be saved")) << screen();
    EXPECT_EQ(contents(), before);
  }
}

TEST_F(Start, ARecordThatLacksAFieldIsLeftOutAndLeftInTheStore) {
  for (const std::string field : {"serverId", "serverIp", "serverPort", "auth", "defaultCharset", "connectionName"}) {
    store(field, 1);
    sql("UPDATE ServerItemStorage SET " + field + " = NULL WHERE connectionName = '" + field + "'");
  }
  const std::string before = contents();
  restart();
  // The character set alone isn't required.
  see("defaultCharset");
  EXPECT_EQ(server()->defaultCharset(), "utf8");
  EXPECT_EQ(contents(), before);
}

TEST_F(Start, ADiskThatIsFullIsReportedAndLeavesTheOldRecordWhole) {
  std::signal(SIGXFSZ, SIG_IGN);
  open({{"local", 1}});
  const std::string before = contents();
  rlimit limit{};
  getrlimit(RLIMIT_FSIZE, &limit);
  server()->setConnectionName(std::string(50'000, 'x'));
  FavouritesStore().changeRecord(*server());
  // The change is still there, and the next save takes it along.
  for (const rlim_t most : {rlim_t{0}, limit.rlim_cur}) {
    const rlimit now{most, limit.rlim_max};
    setrlimit(RLIMIT_FSIZE, &now);
    FavouritesStore().saveIfChanged();
    settle();
    EXPECT_EQ(alerts.shown().size(), 1U);
    EXPECT_TRUE(most > 0 || contents() == before);
  }
  restart();
  EXPECT_EQ(server()->connectionName().size(), 50'000U);
}

}  // namespace tarn::test

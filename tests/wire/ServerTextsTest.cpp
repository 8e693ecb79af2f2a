#include "wire/ConnectionStatus.h"
#include "wire/Keyspace.h"
#include "wire/cluster/NodeAddress.h"

#include <gtest/gtest.h>

namespace tarn::test {
namespace {

TEST(NodeAddress, ReadsTargetsOfRedirects) {
  EXPECT_EQ(redirectTarget("MOVED 3999 10.0.0.2:7001"), (NodeAddress{"10.0.0.2", 7001}));
  EXPECT_EQ(redirectTarget("ASK  1   node.example:1"), (NodeAddress{"node.example", 1}));
  for (const char* line :
       {"MOVED", "MOVED 1", "MOVED 1 ", "MOVED 1 host", "MOVED 1 host:", "MOVED 1 :7001", "MOVED 1 host:x",
        "MOVED 1 host:70000", "MOVED 1 host:-1", "MOVED 1 h:99999999999999999999"}) {
    EXPECT_FALSE(redirectTarget(line)) << line;
  }
}

TEST(NodeAddress, FindsTheMastersOfACluster) {
  const auto masters = mastersIn(
      "a1 127.0.0.1:7000@17000 myself,master - 0 0 1 connected 0-5460\n"
      "b2 127.0.0.1:7003@17003,host-name slave a1 0 0 1 connected\n"
      "\n"
      "c3 :0@0 master,noaddr - 0 0 1 disconnected\n"
      "d4 10.0.0.9:x@1 master - 0\n"
      "master\n"
      "e5 node.example:7001@17001,shard master,fail - 0 0 3 connected 10923-16383\n");
  EXPECT_EQ(masters, (std::vector<NodeAddress>{{"127.0.0.1", 7000}, {"node.example", 7001}}));
}

TEST(Keyspace, ReadsTheCountsOfTheDatabases) {
  const auto lines = keyspaceLines("# Server\r\nredis_version:7\r\n# Keyspace\r\ndb0:keys=12,expires=0\r\n\r\nodd\r\n");
  ASSERT_EQ(lines.size(), 2U);
  EXPECT_EQ(databaseKeys(lines[0])->name, "db0");
  EXPECT_EQ(databaseKeys(lines[0])->count, "12");
  for (const char* line : {"odd", "db1:keys=3", "db1,keys=3", "a,db1:keys=3"})
    EXPECT_FALSE(databaseKeys(line)) << line;
  EXPECT_TRUE(keyspaceLines("# Keyspace\r\n").empty());
  EXPECT_TRUE(keyspaceLines("db0:keys=1,\r\n").empty());
}

}  // namespace
}  // namespace tarn::test

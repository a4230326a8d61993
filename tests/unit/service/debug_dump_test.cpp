// The process-wide dump: hands everything to its writer, and logs a failed assertion when there is none.
#include "Util/DebugDump.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <utility>

#include "Util/Singleton.h"
#include "support/dump_files.h"
#include "support/journal.h"

namespace {

using orvex::test::DumpFiles;
using orvex::test::During;
using orvex::world::World;
using testing::InSequence;
using testing::IsEmpty;

class MockWriter : public IDebugDumpImpl {
public:
  ~MockWriter() override { Die(); }
  MOCK_METHOD(void, Start, (), (override));
  MOCK_METHOD(void, Stop, (), (override));
  MOCK_METHOD(void, DebugDump, (const std::string& text), (override));
  MOCK_METHOD(void, DebugDump, (const void* data, std::size_t size), (override));
  MOCK_METHOD(void, Die, ());
};

TEST(DebugDump, HandsEverythingToItsWriterAndOwnsIt) {
  World world;
  auto writer = std::make_unique<testing::StrictMock<MockWriter>>();
  const char data[] = {1, 2, 3};
  const std::string text("line\n\0more", 10);
  const InSequence inThisOrder;
  EXPECT_CALL(*writer, Start());
  EXPECT_CALL(*writer, DebugDump(text));
  EXPECT_CALL(*writer, DebugDump(static_cast<const void*>(data), 3U));
  EXPECT_CALL(*writer, Stop());
  EXPECT_CALL(*writer, Die());
  {
    CDebugDump dump(std::move(writer));
    dump.Start();
    dump.DebugDump(text);
    dump.DebugDump(data, sizeof data);
    dump.Stop();
  }
  EXPECT_THAT(world.journal.Texts(), IsEmpty());
}

void ExpectEveryOperationIsAFailedAssertion(CDebugDump& dump) {
  EXPECT_THAT(During(World::Current(),
                     [&] {
                       dump.Start();
                       dump.DebugDump(std::string("text"));
                       dump.DebugDump("data", 4);
                       dump.Stop();
                     }),
              testing::Each("E2 Assertion failed"));
  EXPECT_EQ(World::Current().journal.Entries().size(), 4U);
}

TEST(DebugDump, WithoutAWriterOnlyFailsAssertions) {
  const World world;
  CDebugDump dump(nullptr);
  ExpectEveryOperationIsAFailedAssertion(dump);
}

TEST(DebugDump, HasNoWriterWhenThereIsNoMemoryForOne) {
  World world;
  world.answers.Next("new", {0});
  CDebugDump dump;
  ExpectEveryOperationIsAFailedAssertion(dump);
}

TEST(DebugDump, WritesFilesUnlessItIsToldOtherwise) {
  const DumpFiles dumpFiles;
  const World world;
  CDebugDump dump;
  dump.Start();
  dump.DebugDump(std::string("result\n"));
  dump.DebugDump("audio", 5);
  dump.Stop();
  EXPECT_EQ(DumpFiles::Results(), "result\n");
  EXPECT_EQ(DumpFiles::Audio(), "audio");
}

TEST(DebugDump, IsOneForTheProcess) {
  World world;
  CDebugDump* dump = CSingleton<CDebugDump>::GetInstance();
  ASSERT_NE(dump, nullptr);
  EXPECT_EQ(CSingleton<CDebugDump>::GetInstance(), dump);
  EXPECT_LE(world.journal.Count("I0 [singleton] new instance"), 1);
}

}  // namespace

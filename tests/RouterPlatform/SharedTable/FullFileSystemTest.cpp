#include <RouterPlatform/Stats/Counter.h>
#include <tests/RouterPlatform/SharedTable/TableFixture.h>

#include <sched.h>
#include <sys/mount.h>
#include <sys/wait.h>

#include <cerrno>
#include <fstream>
#include <functional>

namespace {

using namespace SharedTableTest;

constexpr int cannotMount = 77;

/// Runs `body` in a child process with a tmpfs of 64 KiB, in a mount namespace of its own, at the test's directory. The
/// child's exit status is `body`'s result: 0, or a number that says where it failed.
class FullFileSystem : public Tables {
 protected:
  int inSmallFileSystem(std::function<int()> const& body) {
    pid_t const child = fork();
    if (child == 0) {
      bool const mounted = unshare(CLONE_NEWNS) == 0 &&
                           mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0 &&
                           mount("tmpfs", directory_.c_str(), "tmpfs", 0, "size=64k,mode=0755") == 0;
      _exit(mounted ? body() : cannotMount);
    }
    int status = 0;
    EXPECT_EQ(waitpid(child, &status, 0), child);
    EXPECT_TRUE(WIFEXITED(status)) << "ended by signal " << WTERMSIG(status);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  }
};

#define CHECK_OR_RETURN(condition, number) \
  if (!(condition)) return number

TEST_F(FullFileSystem, MountingFailsWithAnErrorAndTheRowsStayInTheProcess) {
  int const result = inSmallFileSystem([&] {
    Writer writer(collection, writerOptions(65536, 65536));  // an index of 1 MiB
    writer.rowIs(Row(1, 1));
    CHECK_OR_RETURN(writer.mountPathIs(mountPath).code == Errc::noSpace, 1);
    CHECK_OR_RETURN(writer.mountStatus() == MountStatus::failed, 2);
    CHECK_OR_RETURN(!std::filesystem::exists(path()), 3);
    CHECK_OR_RETURN(!std::filesystem::exists(path(".row.tmp")), 4);
    CHECK_OR_RETURN(writer.row(Key::of(1)) == Row(1, 1), 5);
    CHECK_OR_RETURN(writer.rowIs(Row(2, 2)) == WriteStatus::ok, 6);
    return 0;
  });
  if (result == cannotMount) GTEST_SKIP() << "no right to mount";
  EXPECT_EQ(result, 0);
}

TEST_F(FullFileSystem, GrowingFailsWithAnErrorAndTheRowsThatAreThereStayUsable) {
  int const result = inSmallFileSystem([&] {
    Writer writer(collection, writerOptions(16, 1 << 20));
    CHECK_OR_RETURN(!writer.mountPathIs(mountPath), 1);
    Reader reader(mountPath, collection, readerOptions());
    CHECK_OR_RETURN(!reader.attach(), 2);
    U64 rows = 0;
    WriteStatus status = WriteStatus::ok;
    while (rows < 100000 && (status = writer.rowIs(Row(rows, 1))) == WriteStatus::ok) ++rows;
    CHECK_OR_RETURN(status == WriteStatus::noSpace, 3);
    CHECK_OR_RETURN(rows > 200, 4);
    CHECK_OR_RETURN(Stats::counter("sharedTableNoSpace").value() == 1, 5);
    CHECK_OR_RETURN(writer.rowIs(Row(rows, 1)) == WriteStatus::noSpace, 6);
    CHECK_OR_RETURN(writer.count() == rows, 7);
    for (U64 i = 0; i < rows; ++i) {
      CHECK_OR_RETURN(reader.row(Key::of(i)).row == Row(i, 1), 8);
      CHECK_OR_RETURN(writer.rowIs(Row(i, 2)) == WriteStatus::ok, 9);
      CHECK_OR_RETURN(reader.row(Key::of(i)).row == Row(i, 2), 10);
    }
    CHECK_OR_RETURN(reader.forEach([](Row const&) {}).rows == rows, 11);
    // A place that comes free can be taken again without new space.
    CHECK_OR_RETURN(writer.rowDel(Key::of(7)), 12);
    CHECK_OR_RETURN(writer.rowIs(Row(rows, 1)) == WriteStatus::ok, 13);
    CHECK_OR_RETURN(!writer.mountPathDel(), 14);
    CHECK_OR_RETURN(writer.count() == rows, 15);
    return 0;
  });
  if (result == cannotMount) GTEST_SKIP() << "no right to mount";
  EXPECT_EQ(result, 0);
}

TEST_F(FullFileSystem, RowsComeAndGoForAsLongAsABucketIsLeft) {
  int const result = inSmallFileSystem([&] {
    constexpr U64 rows = 250;  // of 512 buckets
    Writer writer(collection, writerOptions(256, 4096));
    CHECK_OR_RETURN(!writer.mountPathIs(mountPath), 1);
    for (U64 i = 0; i < rows; ++i) CHECK_OR_RETURN(writer.rowIs(Row(i, 1)) == WriteStatus::ok, 2);
    std::ofstream(directory_ + "/ballast") << std::string(65536, 'x');  // whatever is left: no second index any more
    Reader reader(mountPath, collection, readerOptions());
    CHECK_OR_RETURN(!reader.attach(), 3);
    U64 const refused = Stats::counter("sharedTableNoSpace").value();
    for (U64 oldest = 0; oldest < 20000; ++oldest) {
      CHECK_OR_RETURN(writer.rowDel(Key::of(oldest)), 4);
      CHECK_OR_RETURN(writer.rowIs(Row(oldest + rows, 1)) == WriteStatus::ok, 5);
      CHECK_OR_RETURN(reader.row(Key::of(oldest)).status == LookupStatus::missing, 6);
      if (oldest % 16 != 0) continue;
      for (U64 i = 1; i <= rows; ++i) CHECK_OR_RETURN(reader.row(Key::of(oldest + i)).row == Row(oldest + i, 1), 7);
      SharedTable::WalkResult const walked = reader.forEach([](Row const&) {});
      CHECK_OR_RETURN(walked.exact && walked.rows == rows, 8);
    }
    CHECK_OR_RETURN(Stats::counter("sharedTableNoSpace").value() == refused, 9);
    return 0;
  });
  if (result == cannotMount) GTEST_SKIP() << "no right to mount";
  EXPECT_EQ(result, 0);
}

TEST_F(FullFileSystem, SpaceThatComesFreeIsUsed) {
  int const result = inSmallFileSystem([&] {
    std::ofstream(directory_ + "/ballast") << std::string(36 << 10, 'x');
    Writer writer(collection, writerOptions(16, 4096));
    CHECK_OR_RETURN(!writer.mountPathIs(mountPath), 1);
    U64 rows = 0;
    while (rows < 4096 && writer.rowIs(Row(rows, 1)) == WriteStatus::ok) ++rows;
    CHECK_OR_RETURN(rows < 4096, 2);
    std::filesystem::remove(directory_ + "/ballast");
    CHECK_OR_RETURN(writer.rowIs(Row(rows, 1)) == WriteStatus::ok, 3);
    for (U64 i = 0; i <= rows; ++i) CHECK_OR_RETURN(writer.row(Key::of(i)) == Row(i, 1), 4);
    return 0;
  });
  if (result == cannotMount) GTEST_SKIP() << "no right to mount";
  EXPECT_EQ(result, 0);
}

}  // namespace

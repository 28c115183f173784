#include <RouterPlatform/SharedTable/FileIo.h>
#include <tests/RouterPlatform/SharedTable/TableFixture.h>

#include <sys/resource.h>
#include <sys/wait.h>

#include <atomic>
#include <cerrno>
#include <cstdlib>
#include <fstream>
#include <string>
#include <thread>

namespace {

using namespace SharedTableTest;
using SharedTable::Fd;
namespace FileIo = SharedTable::FileIo;

TEST(SharedTableFileIo, WhatGivesNoMoreSpaceIsToldAsNoSpace) {
  for (int const error : {ENOSPC, EDQUOT, EFBIG}) EXPECT_EQ(FileIo::systemFailure(error, "x").code, Errc::noSpace);
  for (int const error : {EIO, EACCES, ENOLCK, EMFILE}) EXPECT_EQ(FileIo::systemFailure(error, "x").code, Errc::system);
  SharedTable::Error const error = FileIo::systemFailure(EIO, "a/b");
  EXPECT_EQ(error.systemError, EIO);
  EXPECT_EQ(error.text, "a/b: Input/output error");
}

TEST(SharedTableFileIo, ACorruptionSaysItsPlaceAndNoneSaysSo) {
  using SharedTable::Corruption;
  std::string text;
  appendText(text, Corruption{});
  EXPECT_EQ(text, "nothing damaged");
  text.clear();
  appendText(text, Corruption{Corruption::Place::slot, 3, 4096});
  EXPECT_EQ(text, "damaged slot 3 at offset 4096");
}

TEST(SharedTableFileIo, TheTableDirectoryIsThatOfTheEnvironmentOrTheUsualOne) {
  char const* const set = std::getenv("SHARED_TABLE_DIR");
  std::string const before = set ? set : "";
  ASSERT_EQ(setenv("SHARED_TABLE_DIR", "/var/tables", 1), 0);
  EXPECT_EQ(FileIo::chosenDirectory(""), "/var/tables");
  EXPECT_EQ(FileIo::chosenDirectory("/option"), "/option");
  EXPECT_EQ(FileIo::tableDirectory("/option"), "/option");
  ASSERT_EQ(setenv("SHARED_TABLE_DIR", "", 1), 0);
  EXPECT_EQ(FileIo::chosenDirectory(""), "");
  ASSERT_EQ(unsetenv("SHARED_TABLE_DIR"), 0);
  EXPECT_EQ(FileIo::chosenDirectory(""), "");
  bool const run = std::filesystem::is_directory(std::filesystem::symlink_status("/run/router-shared-tables"));
  EXPECT_EQ(FileIo::tableDirectory(""), run ? "/run/router-shared-tables" : "/dev/shm/router-shared-tables");
  if (set) setenv("SHARED_TABLE_DIR", before.c_str(), 1);
}

using SharedTableDirectory = Tables;

TEST_F(SharedTableDirectory, IsThePreferredOneExactlyWhileThatIsADirectory) {
  std::string const preferred = directory_ + "/preferred";
  EXPECT_EQ(FileIo::directoryThere(preferred, "/fallback"), "/fallback");
  std::ofstream(preferred) << "a file";
  EXPECT_EQ(FileIo::directoryThere(preferred, "/fallback"), "/fallback");
  std::filesystem::remove(preferred);
  std::filesystem::create_directory_symlink(directory_, preferred);
  EXPECT_EQ(FileIo::directoryThere(preferred, "/fallback"), "/fallback") << "a link to one";
  std::filesystem::remove(preferred);
  std::filesystem::create_directory(preferred);
  EXPECT_EQ(FileIo::directoryThere(preferred, "/fallback"), preferred);
}

TEST(SharedTableFileIo, ADirectorysNameLosesItsSlashesAtTheEnd) {
  EXPECT_EQ(FileIo::chosenDirectory("/a/b//"), "/a/b");
  EXPECT_EQ(FileIo::chosenDirectory("//"), "/");
}

TEST(SharedTableFileIo, NamesHaveAtMostTwoHundredOctets) {
  EXPECT_TRUE(FileIo::namesAreSound("a/" + std::string(200, 'x'), "b"));
  EXPECT_FALSE(FileIo::namesAreSound("a/" + std::string(201, 'x'), "b"));
  EXPECT_FALSE(FileIo::namesAreSound("a", std::string(201, 'x')));
  EXPECT_FALSE(FileIo::namesAreSound("a", std::string("x\0y", 3)));
}

TEST(SharedTableFileIo, AWakeCountsThoseItWoke) {
  std::atomic<Fwk::U32> word{7};
  EXPECT_EQ(FileIo::wakeAll(word), 0);
  FileIo::wait(word, 6, 60000);  // returns: it is another number already
  std::thread waiter([&] { FileIo::wait(word, 7, 60000); });
  while (FileIo::wakeAll(word) == 0) std::this_thread::yield();
  waiter.join();
}

class SharedTableLocks : public Tables {
 protected:
  Fd openIt(int flags) const { return Fd(open((directory_ + "/file").c_str(), flags | O_CREAT | O_CLOEXEC, 0600)); }
};

TEST_F(SharedTableLocks, AHeldLockAndAFailingCallAreToldApart) {
  Fd const first = openIt(O_RDWR);
  Fd const second = openIt(O_RDWR);
  bool held = true;
  EXPECT_EQ(FileIo::findWriteLock(second.get(), held), 0);
  EXPECT_FALSE(held);
  EXPECT_EQ(FileIo::lockForWriting(first.get()), 0);
  EXPECT_EQ(FileIo::lockForWriting(second.get()), EAGAIN);
  EXPECT_EQ(FileIo::findWriteLock(second.get(), held), 0);
  EXPECT_TRUE(held);
  EXPECT_TRUE(FileIo::isLockedForWriting(second.get()));

  EXPECT_EQ(FileIo::lockForWriting(openIt(O_RDONLY).get()), EBADF) << "open for reading only";
  EXPECT_EQ(FileIo::findWriteLock(-1, held), EBADF);
  EXPECT_FALSE(FileIo::isLockedForWriting(-1));
}

TEST_F(SharedTableLocks, AFileIsToldFromOthersWhateverItsName) {
  Fd directory;
  ASSERT_FALSE(FileIo::openDirectory(directory_, "", false, {}, directory));
  Fd const file = openIt(O_RDWR);
  EXPECT_TRUE(FileIo::namesFile(directory, "file", file.get()));
  EXPECT_FALSE(FileIo::namesFile(directory, "none", file.get()));
  EXPECT_FALSE(FileIo::namesFile(directory, "file", -1));
  EXPECT_FALSE(FileIo::namesFile(directory, "file", directory.get()));
  EXPECT_FALSE(FileIo::namesFile(directory, "file", Fd(open("/proc/self/stat", O_RDONLY | O_CLOEXEC)).get()));
  ASSERT_EQ(rename((directory_ + "/file").c_str(), (directory_ + "/kept").c_str()), 0);
  openIt(O_RDWR);
  EXPECT_FALSE(FileIo::namesFile(directory, "file", file.get()));
}

TEST_F(SharedTableLocks, AMadeDirectoryKeepsTheBitsThatItInheritsAndIsOpenToReaders) {
  ASSERT_EQ(chmod(directory_.c_str(), 02755), 0);
  mode_t const before = umask(077);
  Fd made;
  EXPECT_FALSE(FileIo::openDirectory(directory_, "a", true, {}, made));
  umask(before);
  struct stat parent {};
  struct stat status {};
  ASSERT_EQ(stat(directory_.c_str(), &parent), 0);
  ASSERT_EQ(fstat(made.get(), &status), 0);
  EXPECT_EQ(status.st_mode & 07777, parent.st_mode & 07777);
}

using SharedTableFileSize = Tables;

TEST_F(SharedTableFileSize, AboveTheProcessesLimitIsAnErrorAndNoSignal) {
  pid_t const child = fork();
  if (child == 0) {
    struct rlimit const limit{4096, 4096};
    if (setrlimit(RLIMIT_FSIZE, &limit) != 0) _exit(1);
    Writer writer(collection, writerOptions());
    SharedTable::Error const error = writer.mountPathIs(mountPath);
    if (error.code != Errc::noSpace || error.systemError != EFBIG) _exit(2);
    if (writer.rowIs(Row(1, 1)) != WriteStatus::ok) _exit(3);
    _exit(0);
  }
  int status = 0;
  ASSERT_EQ(waitpid(child, &status, 0), child);
  EXPECT_TRUE(WIFEXITED(status)) << "ended by signal " << WTERMSIG(status);
  EXPECT_EQ(WEXITSTATUS(status), 0);
}

}  // namespace

#include <RouterPlatform/SharedTable/FileIo.h>
#include <tests/RouterPlatform/SharedTable/TableFixture.h>

#include <sys/resource.h>
#include <sys/wait.h>

#include <cerrno>

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

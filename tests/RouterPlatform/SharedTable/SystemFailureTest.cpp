#include <RouterPlatform/SharedTable/FileIo.h>
#include <tests/RouterPlatform/SharedTable/TableFixture.h>

#include <sys/resource.h>

#include <cerrno>
#include <fstream>
#include <new>

namespace {

using namespace SharedTableTest;
using SharedTable::Error;
using SharedTable::Fd;
using SharedTable::Memory;
using testing::HasSubstr;
namespace FileIo = SharedTable::FileIo;

/// A limit of this process, lowered for as long as this lives.
class Limit {
 public:
  Limit(decltype(RLIMIT_AS) resource, rlim_t most) : resource_(resource) {
    EXPECT_EQ(getrlimit(resource_, &before_), 0);
    struct rlimit const lower{most, before_.rlim_max};
    EXPECT_EQ(setrlimit(resource_, &lower), 0);
  }
  ~Limit() { setrlimit(resource_, &before_); }

 private:
  decltype(RLIMIT_AS) resource_;
  struct rlimit before_ {};
};

/// Address space for small things only; a table of `manyRows` is none.
class LittleAddressSpace : public Limit {
 public:
  LittleAddressSpace() : Limit(RLIMIT_AS, used() + (rlim_t{16} << 20)) {}

 private:
  static rlim_t used() {
    rlim_t pages = 0;
    std::ifstream("/proc/self/statm") >> pages;
    return pages * static_cast<rlim_t>(sysconf(_SC_PAGESIZE));
  }
};

constexpr U32 manyRows = 1 << 20;

class FailingSystem : public Tables {
 protected:
  FailingSystem() { writer_.rowIs(Row(1, 1)); }

  void expectNotMounted(Error const& error, int systemError) const {
    EXPECT_EQ(error.code, Errc::system);
    EXPECT_EQ(error.systemError, systemError) << error.text;
    EXPECT_EQ(writer_.mountStatus(), MountStatus::failed);
    EXPECT_EQ(writer_.row(Key::of(1)), Row(1, 1)) << "the rows stay in the process";
  }

  Writer writer_{collection, writerOptions(8, manyRows)};
  Reader reader_{mountPath, collection, readerOptions()};
};

TEST_F(FailingSystem, ADirectoryInThePlaceOfATableIsLeftThere) {
  std::filesystem::create_directories(path());
  Error const error = writer_.mountPathIs(mountPath);
  expectNotMounted(error, EISDIR);
  EXPECT_THAT(error.text, HasSubstr("test/tables/row.tbl: Is a directory"));
  EXPECT_TRUE(std::filesystem::is_directory(path()));
  EXPECT_FALSE(std::filesystem::exists(path(".row.tmp")));
  EXPECT_EQ(reader_.attach().code, Errc::notTrusted);
  std::filesystem::remove(path());
  EXPECT_FALSE(writer_.mountPathIs(mountPath)) << "the failed try has given everything back";
  EXPECT_FALSE(reader_.attach());
}

TEST_F(FailingSystem, AFailedMountingIsForgottenWhenItIsGivenUp) {
  std::filesystem::create_directories(path());
  EXPECT_TRUE(writer_.mountPathIs(mountPath));
  EXPECT_EQ(writer_.mountError().systemError, EISDIR);
  EXPECT_EQ(writer_.mountPath(), mountPath);
  EXPECT_FALSE(writer_.mountPathDel());
  EXPECT_EQ(writer_.mountStatus(), MountStatus::unmounted);
  EXPECT_FALSE(writer_.mountError());
  EXPECT_EQ(writer_.mountPath(), "");
  EXPECT_EQ(writer_.collection(), collection);
}

TEST_F(FailingSystem, ADirectoryInThePlaceOfAFileBesideTheTableIsAnError) {
  std::filesystem::create_directories(path(".row.tmp"));
  expectNotMounted(writer_.mountPathIs(mountPath), EEXIST);
  std::filesystem::remove(path(".row.tmp"));
  std::filesystem::remove(path("row.lock"));
  std::filesystem::create_directories(path("row.lock"));
  expectNotMounted(writer_.mountPathIs(mountPath), EISDIR);
  EXPECT_FALSE(std::filesystem::exists(path()));
}

TEST_F(FailingSystem, ATableDirectoryThatCannotBeMadeIsNamed) {
  SharedTable::WriterOptions options = writerOptions();
  options.directory += "/missing/tables";
  Error const error = Writer(collection, options).mountPathIs(mountPath);
  EXPECT_EQ(error.code, Errc::system);
  EXPECT_THAT(error.text, HasSubstr("/missing/tables: No such file or directory"));
}

TEST_F(FailingSystem, ATableDirectoryOfTooLongANameIsAnErrorToReaders) {
  Reader reader(mountPath, collection, {{}, std::string(5000, 'x')});
  Error const error = reader.attach();
  EXPECT_EQ(error.code, Errc::system);
  EXPECT_EQ(error.systemError, ENAMETOOLONG);
}

TEST_F(FailingSystem, WithoutAFreeDescriptorNothingIsMountedOrAttached) {
  {
    Limit const descriptors(RLIMIT_NOFILE, 0);
    expectNotMounted(writer_.mountPathIs(mountPath), EMFILE);
    EXPECT_EQ(reader_.attach().systemError, EMFILE);
    EXPECT_FALSE(reader_.view());
  }
  EXPECT_FALSE(writer_.mountPathIs(mountPath));
  EXPECT_FALSE(reader_.attach());
}

TEST_F(FailingSystem, WithoutAddressSpaceNothingIsMountedOrAttached) {
  {
    LittleAddressSpace const limit;
    expectNotMounted(writer_.mountPathIs(mountPath), ENOMEM);
  }
  ASSERT_FALSE(writer_.mountPathIs(mountPath));
  LittleAddressSpace const limit;
  EXPECT_EQ(reader_.attach().systemError, ENOMEM);
  EXPECT_FALSE(reader_.attached());
  EXPECT_THROW(Writer(collection, writerOptions(8, manyRows)), std::bad_alloc);
}

using TableMemory = Tables;

TEST_F(TableMemory, AFileThatIsNotOpenForItIsNotMapped) {
  std::string const name = directory_ + "/file";
  Memory memory;
  EXPECT_EQ(memory.mapReadOnly(Fd(open(name.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600)), 4096), EACCES);
  EXPECT_EQ(memory.base(), nullptr);
  EXPECT_NE(memory.mapFile(Fd(open(name.c_str(), O_RDONLY | O_CLOEXEC)), 4096), 0);
  EXPECT_EQ(memory.base(), nullptr);
}

TEST(TablePrivateMemory, HasNoSpaceBeyondItsEnd) {
  Memory memory;
  ASSERT_EQ(memory.mapPrivate(8192), 0);
  EXPECT_EQ(memory.size(), 8192u);
  EXPECT_EQ(memory.reserve(4096, 4096), 0);
  EXPECT_EQ(memory.reserve(U64{1} << 62, 4096), ENOMEM);
}

}  // namespace

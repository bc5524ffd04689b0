#include "tvncommon/io/file_replacement.hpp"

#include "tests/support/runs.hpp"
#include "tvncommon/io/byte_file.hpp"
#include "tvncommon/io/io_layer.hpp"
#include "tvncommon/io/system_calls.hpp"

#include <cerrno>
#include <sys/stat.h>

// Failures that prevent the replacement of a file, and failures that must not prevent it.
namespace {

using namespace io_layer;
using sample_files::get;
using sample_files::put;

class FileReplacement : public runs::Files {};

constexpr const char* newFile = "file.unfinished";

int replaceFile() {
    const int unit = takeUnit();
    int status = openTextForCommit(unit, "file");
    if (status == ok) status = writeLine(unit, "new");
    const int committed = status == ok ? commitUnit(unit) : status;
    releaseUnit(unit);
    return committed;
}

// Another file, link, pipe or folder has the name of the new file.
TEST_F(FileReplacement, NewFileNameExists) {
    const std::pair<const char*, void (*)()> removable[] = {
        {"file", [] { put(newFile, "of an earlier run"); }},
        {"link", [] { std::filesystem::create_symlink("missing", newFile); }},
        {"loop", [] { std::filesystem::create_symlink(newFile, newFile); }},
        {"pipe", [] { ASSERT_EQ(mkfifo(newFile, 0666), 0); }}};
    for (const auto& [kind, create] : removable) {
        put("file", "old");
        create();
        EXPECT_EQ(replaceFile(), ok) << kind;
        EXPECT_EQ(get("file"), "new\n");
        EXPECT_FALSE(std::filesystem::exists(std::filesystem::symlink_status(newFile)));
    }
    std::filesystem::create_directory(newFile);
    EXPECT_EQ(replaceFile(), openFailed);
    EXPECT_EQ(get("file"), "new\n");
    EXPECT_TRUE(std::filesystem::is_directory(newFile));
}

TEST_F(FileReplacement, LinksAndPermissionsAreKept) {
    put("elsewhere", "old");
    std::filesystem::permissions("elsewhere", std::filesystem::perms{0640});
    std::filesystem::create_symlink("./elsewhere", "file");
    EXPECT_EQ(replaceFile(), ok);
    EXPECT_TRUE(std::filesystem::is_symlink("file"));
    EXPECT_EQ(get("elsewhere"), "new\n");
    EXPECT_EQ(std::filesystem::status("elsewhere").permissions(), std::filesystem::perms{0640});
}

// A call for the new file fails with an errno. Then the new file is written, or the old file is
// emptied and written in place, or the replacement fails and the old file is kept.
enum class Outcome { replaced, inPlace, failed };
struct Row {
    const char* call;
    int error;
    Outcome outcome;
};

std::string failingCall;
int failing; // errno

int openUnlessFailing(const char* path, system_calls::OpenMode mode) {
    const bool creates = mode == system_calls::OpenMode::create;
    const bool fails = creates
                           ? failingCall.starts_with("create")
                           : failingCall == "open the left-over" && std::string(path) == newFile;
    return fails ? (errno = failing, -1) : system_calls::systemTable().open(path, mode);
}

void fail(const std::string& call, int error) {
    failingCall = call;
    failing = error;
    system_calls::Table& table = system_calls::table;
    table = system_calls::systemTable();
    table.open = openUnlessFailing;
    if (call == "create and empty")
        table.truncate = [](int, std::int64_t) { return errno = EIO, -1; };
    if (call == "lock") table.lock = [](int, bool) { return errno = failing, -1; };
    if (call == "remove") table.remove = [](const char*) { return errno = failing, -1; };
    if (call == "permissions")
        table.setPermissions = [](int, unsigned) { return errno = failing, -1; };
    if (call == "sync") table.sync = [](int) { return errno = failing, -1; };
}

TEST_F(FileReplacement, CallsThatFail) {
    const Row rows[] = {
        {"create", EACCES, Outcome::inPlace},
        {"create", EPERM, Outcome::inPlace},
        {"create", EROFS, Outcome::inPlace},
        {"create", ENAMETOOLONG, Outcome::inPlace},
        {"create", EIO, Outcome::failed},
        {"create and empty", EACCES, Outcome::failed},
        {"open the left-over", EACCES, Outcome::replaced}, // of another user, in our folder
        {"open the left-over", EIO, Outcome::failed},
        {"remove", EACCES, Outcome::inPlace},
        {"remove", EIO, Outcome::failed},
        {"remove", ENOENT, Outcome::failed}, // another process creates it again each time
        {"lock", EWOULDBLOCK, Outcome::failed},
        {"lock", ENOLCK, Outcome::replaced}, // a file system without locks
        {"permissions", EPERM, Outcome::inPlace},
        {"permissions", EIO, Outcome::failed},
        {"sync", EINVAL, Outcome::replaced}, // a file system without syncs
        {"sync", ENOSYS, Outcome::replaced},
        {"sync", EIO, Outcome::failed}};
    for (const Row& row : rows) {
        SCOPED_TRACE(row.call + (" " + std::to_string(row.error)));
        put("file", "old");
        std::filesystem::permissions("file", std::filesystem::perms{0640});
        put(newFile, "of an earlier run");
        const auto before = std::filesystem::hard_link_count("file");
        std::filesystem::create_hard_link("file", "second name");
        fail(row.call, row.error);
        EXPECT_EQ(replaceFile() == ok, row.outcome != Outcome::failed);
        system_calls::table = system_calls::systemTable();
        EXPECT_EQ(get("file"), row.outcome == Outcome::failed ? "old" : "new\n");
        EXPECT_EQ(std::filesystem::hard_link_count("file") == before,
                  row.outcome == Outcome::replaced);
        std::filesystem::remove("second name");
        std::filesystem::remove(newFile);
    }
    byte_file::File file;
    std::int64_t size = 0;
    ASSERT_EQ(byte_file::open("file", system_calls::OpenMode::update, file, size), ok);
    for (const auto& [error, status] :
         {std::pair{EINVAL, ok}, std::pair{ENOSYS, ok}, std::pair{EIO, writeFailed}}) {
        fail("sync", error);
        EXPECT_EQ(byte_file::sync(file), status);
        EXPECT_EQ(byte_file::syncFolderOf("./file"), status);
    }
    byte_file::close(file);
}

// Results of the system's calls.
TEST_F(FileReplacement, SpaceAndMemoryOfTheSystem) {
    const system_calls::Table table = system_calls::systemTable();
    const int withoutReserve = table.open("/proc/self/comm", system_calls::OpenMode::existing);
    ASSERT_GE(withoutReserve, 0);
    EXPECT_EQ(table.reserve(withoutReserve, 0, 1), 0);
    table.close(withoutReserve);
    put("file", "");
    const int reading = table.open("file", system_calls::OpenMode::read);
    EXPECT_EQ(table.reserve(reading, 0, 1), -1);
    table.close(reading);
    EXPECT_EQ(table.allocate(std::numeric_limits<std::size_t>::max() - 1), nullptr);
    void* least = table.allocate(0);
    EXPECT_NE(least, nullptr);
    std::free(least);
}

} // namespace

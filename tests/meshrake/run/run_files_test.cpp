#include "tests/support/faulty_calls.hpp"
#include "tvncommon/io/io_layer.hpp"
#include "tvncommon/io/system_calls.hpp"

#include <cerrno>
#include <fcntl.h>
#include <future>
#include <memory>
#include <new>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

// Files that runs share, at the same time or one after the other.
namespace {

using namespace sample_files;
using namespace runs;
using faulty_calls::Fault;
using faulty_calls::kind;
using faulty_calls::Way;

class RunFiles : public Files {
protected:
    RunFiles() { write(brickProblem({1, 1, 1, 2})); }

    // Returns all files of the folder, without those that each run writes.
    static Problem files() {
        Problem found;
        for (const std::string& name : filesHere())
            if (name != "to.meshrake.eco" && name != "scratch_plot") found[name] = get(name);
        return found;
    }
};

// A failed allocation in an open leaves no lock, which would make the next open fail.
TEST_F(RunFiles, NoMemoryForANewFile) {
    using namespace io_layer;
    static int countdown;
    system_calls::table.allocate = [](std::size_t size) -> void* {
        return --countdown == 0 ? nullptr : system_calls::systemTable().allocate(size);
    };
    const std::string path = "a_new_file_with_a_name_that_needs_memory";
    int failures = 0;
    for (bool opened = false; !opened; ++failures) {
        const int unit = takeUnit();
        countdown = failures + 1;
        try {
            opened = openTextForCommit(unit, path) == ok;
        } catch (const std::bad_alloc&) {
        }
        countdown = 0;
        releaseUnit(unit);
        ASSERT_EQ(openTextForCommit(takeUnit(), path), ok) << failures;
        std::string failed;
        EXPECT_EQ(releaseAll(failed), ok);
    }
    EXPECT_GT(failures, 3);
    EXPECT_FALSE(std::filesystem::exists(path + ".unfinished"));
}

TEST_F(RunFiles, AnIndexThatCannotBeWritten) {
    put("t.plot.control", "tecplot binary append\n"); // without "end" the index is not read
    for (const bool file : {false, true}) {
        put("to.tec_append", "old");
        Fault fault{.way = Way::lasting,
                    .kind = kind("open"),
                    .error = EACCES,
                    .only = file ? "to.tec_append" : "to.tec_append."};
        const Ran ran = faulty_calls::run({"meshrake"}, fault);
        EXPECT_EQ(ran.status, 0);
        // The index may be writable although no file can be created in the folder.
        EXPECT_EQ(get("to.tec_append"), file ? "old" : integerRecord({2}));
        const std::string words = "Warning: Failed to open file to.tec_append for writing";
        for (const std::string& text : {ran.screen, get("to.meshrake.eco")}) {
            const std::size_t at = text.find(words);
            EXPECT_EQ(at != std::string::npos, file);
            EXPECT_EQ(text.find(words, at + 1), std::string::npos);
        }
    }
}

TEST_F(RunFiles, LinksToDataSetsAreKept) {
    put("t.plot.control", "tecplot binary mode\nend\nwrite pm domain file\n");
    for (const char* name : {"elsewhere", "other"}) put(name, name);
    std::filesystem::create_symlink("elsewhere", "to.pm.szplt");
    for (const std::string made : {"elsewhere.unfinished", "to.pm.szplt.szhdr.unfinished"})
        std::filesystem::create_symlink("other", made);
    EXPECT_EQ(runHere().status, 0);
    EXPECT_EQ(std::filesystem::read_symlink("to.pm.szplt"), "elsewhere");
    EXPECT_TRUE(get("elsewhere").starts_with("#!TDV112"));
    EXPECT_EQ(get("other"), "other");
}

// Holds the lock of another run until the end of the scope.
struct Lock {
    explicit Lock(const char* name) : descriptor(open(name, O_RDWR | O_CREAT | O_CLOEXEC, 0666)) {
        EXPECT_EQ(flock(descriptor, LOCK_EX), 0);
    }
    ~Lock() { close(descriptor); }
    Lock(const Lock&) = delete;
    Lock& operator=(const Lock&) = delete;
    int descriptor;
};

TEST_F(RunFiles, TwoRunsOfOnePrefix) {
    put("to.meshrake.eco", "of the other run");
    put("t.plot.control",
        "tecplot binary mode\ntecplot binary append\nend\nwrite pm domain file\n");
    for (const char* batch : {"nosuch\n", "t\n"}) {
        put("batch.pfx", batch);
        const Problem before = files();
        const Lock lock("to.meshrake.eco");
        const Ran ran = runProgram("", "t\n", "exec timeout 20");
        expectFailure(ran, {"ERROR, HALTING EXECUTION ***\n", "\nAnother run is using t\n"});
        EXPECT_EQ(get("to.meshrake.eco"), "of the other run");
        EXPECT_EQ(files(), before);
    }
    // A call that is interrupted, file systems without locks, and a call that fails.
    static int error;
    for (const auto& [number, status] :
         std::map<int, int>{{EINTR, 0}, {ENOLCK, 0}, {ENOSYS, 0}, {EOPNOTSUPP, 0}, {EIO, 1}}) {
        error = number;
        system_calls::table.lock = [](int, bool) {
            errno = error;
            if (error == EINTR) error = 0;
            return errno == 0 ? 0 : -1;
        };
        const Ran ran = runHere();
        EXPECT_EQ(ran.status, status) << number << ran.errors;
        EXPECT_THAT(ran.errors,
                    HasSubstr(status == 0 ? "" : "Failed to open file: to.meshrake.eco"));
    }
}

// A run that answers the prompt replaces the file that all prefixes of the folder share.
TEST_F(RunFiles, TwoPrefixesAtOnce) {
    put("t.plot.control", "end\n");
    // Another run that is still writing the new file.
    put("batch.pfx", "nosuch\n");
    put("batch.pfx.unfinished", "of the other run");
    const Lock lock("batch.pfx.unfinished");
    const Ran ran = runProgram("", "t\n", "exec timeout 20");
    EXPECT_EQ(ran.status, 0) << ran.errors;
    EXPECT_THAT(ran.screen, HasSubstr("\nFailed to generate batch.pfx file with prefix t\n"));
    EXPECT_EQ(get("batch.pfx"), "nosuch\n");
    EXPECT_EQ(get("batch.pfx.unfinished"), "of the other run");
}

// The file is not changed while another run has it. After the wait the file may not exist: the run
// then creates it, or uses the file that a third run has created.
TEST_F(RunFiles, ARunWaitsForTheScratchFile) {
    for (const bool replaced : {false, true}) {
        std::filesystem::remove(".screen");
        put("t.plot.control", "end\nwrite olf domain file\n");
        auto lock = std::make_unique<Lock>("scratch_plot");
        put("scratch_plot", "of the other run");
        const std::string waits = "\nWaiting for another run that uses scratch_plot\n";
        auto waiting =
            std::async(std::launch::async, [] { return runProgram("", "", "exec timeout 20"); });
        while (get(".screen").find(waits) == std::string::npos &&
               waiting.wait_for(std::chrono::milliseconds(10)) != std::future_status::ready) {
        }
        EXPECT_EQ(get("scratch_plot"), "of the other run");
        std::filesystem::rename("scratch_plot", "kept");
        if (replaced) put("scratch_plot", "of a third run");
        lock.reset();
        const Ran ran = waiting.get();
        EXPECT_EQ(ran.status, 0) << ran.errors;
        EXPECT_THAT(ran.screen, HasSubstr(waits));
        EXPECT_EQ(get("kept"), "of the other run");
        EXPECT_EQ(get("scratch_plot"), "end\nwrite olf domain file\n");
        EXPECT_TRUE(std::filesystem::exists("to.olf.dat"));
        EXPECT_FALSE(std::filesystem::exists("to.pm.dat"));
    }
}

} // namespace

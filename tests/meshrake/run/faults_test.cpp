#include "tests/support/runs.hpp"

#include <sys/stat.h>

// Runs of the program with a full disk, with files of an unexpected kind and with little memory.
// They must end with status 1 and a banner that names the file, or continue if the file is
// optional.
namespace {

using namespace sample_files;
using namespace runs;

class FullDisk : public Files {
protected:
    FullDisk() { write(twoTimes()); }
};

TEST_F(FullDisk, TheScreen) {
    const std::string banner = "\nError writing file: standard output\n";
    for (const char* to : {">/dev/full", ">&-"}) expectFailure(runProgram(to), {banner});
    // A reader that has ended.
    const Ran ran = runProgram(">&3; echo $? >.status) 3>&1 | true", "", "(sleep 0.2;");
    expectFailure({std::stoi(get(".status")), "", ran.errors}, {banner});
    for (const char* other : {"<&-", "2>&-", "2>/dev/full"})
        EXPECT_EQ(runProgram(other).status, 0) << other;
}

TEST_F(FullDisk, FileSizeLimit) {
    for (const char* name : {"to.sat_pm.0001", "t.plot.control"}) std::filesystem::remove(name);
    write(brickProblem({40, 40, 2, 1}));
    // 64 KiB: the mesh of pm alone is more than that.
    const std::string limit = "ulimit -f 128; exec";
    const std::string detail =
        "\nError detail: Error encountered during write statement\nError number: 38\n";
    expectFailure(runProgram("", "", limit), {"\nError writing file: to.pm.dat" + detail});
    EXPECT_EQ(std::filesystem::file_size("to.pm.dat"), 65536U); // the part within the limit
    put("t.plot.control", "tecplot binary mode\nend\nwrite pm domain file\nend\n");
    expectFailure(runProgram("", "", limit),
                  {"\nCreate new zone in pm domain.\nFile: to.pm.szplt" + detail});
}

// Files of an unexpected kind instead of an input file.
TEST(UnexpectedKindsOfFiles, InsteadOfInput) {
    const std::string names = "to.gen to.species to.hmc to.coordinates_pm to.elements_pm "
                              "to.coordinates_olf to.elements_olf to.head_pm.0001 to.head_olf.0001 "
                              "to.sat_pm.0001 to.tv_zone_olf.0002 t.plot.control";
    for (const std::string create :
         {"mkdir ", "mkfifo ", "touch ", "ln -s /dev/zero ", "ln -s nowhere "}) {
        std::istringstream list(names);
        for (std::string name; list >> name;) {
            const bool required = name == "to.gen" || name.starts_with("to.elements");
            const bool anyText = name == "t.plot.control" && create == "touch ";
            if ((create == "ln -s nowhere " && !required) || anyText) continue;
            SCOPED_TRACE(create + name);
            const Folder folder;
            write(twoTimes());
            std::filesystem::remove(name);
            ASSERT_EQ(std::system((create + name).c_str()), 0);
            expectFailure(runProgram("", "", "exec timeout 20"), {name});
        }
    }
}

// A run must not wait for a reader of a pipe.
TEST(UnexpectedKindsOfFiles, InsteadOfOutput) {
    for (const std::string name : {"to.meshrake.eco", "scratch_plot", "to.pm.dat", "to.olf.dat"})
        for (const bool pipe : {false, true}) {
            const Folder folder;
            write(twoTimes());
            ASSERT_EQ(pipe ? mkfifo(name.c_str(), 0600) : mkdir(name.c_str(), 0700), 0);
            expectFailure(runProgram("", "", "exec timeout 3"),
                          {"\nFailed to open file: " + name + "\n",
                           pipe ? "" : "opening file\nError number: 30\n"});
        }
}

// The scratch file is emptied before the control file is read.
TEST(UnexpectedKindsOfFiles, ScratchFileThatIsTheControlFile) {
    for (const bool symbolic : {false, true}) {
        const Folder folder;
        write(twoTimes());
        const Bytes before = get("t.plot.control");
        if (symbolic)
            std::filesystem::create_symlink("t.plot.control", "scratch_plot");
        else
            std::filesystem::create_hard_link("t.plot.control", "scratch_plot");
        expectFailure(runProgram("", "", "exec timeout 20"),
                      {"\nFailed to open file: scratch_plot\n"});
        EXPECT_EQ(get("t.plot.control"), before);
    }
}

TEST(UnexpectedKindsOfFiles, InsteadOfOptionalFiles) {
    const Folder folder;
    write(twoTimes());
    std::filesystem::remove("t.skiv");
    std::filesystem::create_directory("t.skiv"); // a folder of this name also counts
    std::filesystem::remove("batch.pfx");
    std::filesystem::create_symlink("/dev/zero", "batch.pfx");
    EXPECT_EQ(runProgram("", "t\n").status, 0);
    std::filesystem::remove("batch.pfx");
    std::filesystem::create_directory("batch.pfx");
    const Ran ran = runProgram("", "t\n");
    EXPECT_EQ(ran.status, 0);
    for (const char* words : {"\nError opening batch.pfx file\nError reading batch.pfx file\n",
                              "\nFailed to generate batch.pfx file with prefix t\n"})
        EXPECT_THAT(ran.screen, HasSubstr(words));
}

#ifndef __SANITIZE_ADDRESS__
// From a limit at which the program can be loaded, to one that is enough for a small run.
TEST(Memory, LimitsOfTheSystem) {
    const Folder folder;
    write(twoTimes());
    int failed = 0, finished = 0;
    for (int limit = 5000; limit < 14000; limit += 50) {
        const Ran ran = runProgram("", "", "ulimit -v " + std::to_string(limit) + "; exec");
        if (ran.status == 127 && failed + finished == 0) continue; // not loaded
        ran.status == 0 ? ++finished : ++failed;
        if (ran.status == 0) continue;
        EXPECT_EQ(ran.status, 1) << limit;
        EXPECT_THAT(ran.errors, HasSubstr("ALLOCATION ERROR, HALTING EXECUTION")) << limit;
    }
    EXPECT_GT(failed, 0);
    EXPECT_GT(finished, 0);
}
#endif

} // namespace

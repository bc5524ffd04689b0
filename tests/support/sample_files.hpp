#pragma once

#include <cstdint>
#include <filesystem>
#include <map>
#include <string>
#include <string_view>
#include <vector>

// Problems small enough to be read by eye, made byte by byte. A problem is the contents of its
// files by name; tests change single bytes of it before it goes to the disk.
namespace sample_files {

using Bytes = std::string;
using Integers = std::vector<std::int32_t>;
using Reals = std::vector<double>;
using Problem = std::map<std::string, Bytes>;

template<class T>
Bytes bytesOf(const std::vector<T>& values) {
    return {reinterpret_cast<const char*>(values.data()), values.size() * sizeof(T)};
}

// One record in one piece.
Bytes record(std::string_view payload);
Bytes integerRecord(const Integers& values);
Bytes integerRecords(const Integers& values); // each in a record of its own
Bytes realRecord(const Reals& values);
Bytes textRecord(std::string text, std::size_t length);

// Result file of the newer generation: a record for each component.
Bytes resultFile(const std::string& text, const std::vector<Reals>& components);
Bytes resultFile(const std::string& text, const std::vector<std::vector<float>>& components);
Bytes resultFile(const std::string& text, const Integers& values);
Bytes header(const std::string& text, const std::string& type, std::size_t components,
             std::size_t values);

// nx by ny columns of unit bricks in `layers` layers of heights 1, 2, 3 and so on, and the surface
// upon them. The prefix is "t". Heads are 0.5 below the node's x + 10 * y + 100 * z.
struct Grid {
    int nx = 1, ny = 1, layers = 1;
    int times = 1;
};
Problem brickProblem(const Grid& grid);

// One column over two output times, with a control file that includes another.
Problem twoTimes();

// The simulator's files up to an output time, for data sets that are appended to; saturations come
// at every other time.
Problem appendedTimes(int times);

// Adds a dual continuum on all nodes and elements of pm.
void addDual(Problem& problem, std::int32_t nodes);

// Files of a domain that lies on the top sheet: its own nodes in the order of the sheet, with
// global numbers after `nodesAhead`. The further records follow those that all domains have.
void addSheetDomain(Problem& problem, const Grid& grid, const std::string& tag, int nodesAhead,
                    const Bytes& furtherCoordinates, const Bytes& furtherElements);

// Payload word `index` of record `number`, both from 0.
void patch(Bytes& file, int number, int index, std::int32_t value);

void write(const Problem& problem);
void put(const std::string& path, std::string_view contents);
Bytes get(const std::string& path);

// The same without the value of Date_Created of a text or binary data set.
Bytes getDated(const std::string& path);

// Expects the text to be that of a file of tests/expected. tools/rewrite_expected.sh sets the
// environment variable MESHRAKE_REWRITE_EXPECTED, with which the text is written there instead.
Bytes expected(const std::string& name);
void expectFile(const std::string& name, const std::string& text);

// An empty working directory, left and removed at the end.
struct Folder {
    Folder();
    ~Folder();
    Folder(const Folder&) = delete;
    Folder& operator=(const Folder&) = delete;
    std::filesystem::path path, before;
};

// Sample problem of make_problem in the working directory; its prefix is "t".
void makeProblem(const std::string& options);

} // namespace sample_files

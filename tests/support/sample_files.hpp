#pragma once

#include <cstdint>
#include <filesystem>
#include <map>
#include <set>
#include <string>
#include <string_view>
#include <vector>

// Small problems, made byte by byte. A problem is the contents of its files by name. Tests change
// single bytes of it before they write it to the disk.
namespace sample_files {

using Bytes = std::string;
using Integers = std::vector<std::int32_t>;
using Reals = std::vector<double>;
using Singles = std::vector<float>;
using Texts = std::vector<std::string>;
using Problem = std::map<std::string, Bytes>;

template<class T>
Bytes bytesOf(const std::vector<T>& values) {
    return {reinterpret_cast<const char*>(values.data()), values.size() * sizeof(T)};
}

// A record without sub-records.
Bytes record(std::string_view payload);
Bytes integerRecord(const Integers& values);
Bytes integerRecords(const Integers& values); // a record for each value
Bytes realRecord(const Reals& values);
Bytes textRecord(std::string text, std::size_t length);

// A result file of the newer format: a record for each component.
Bytes resultFile(const std::string& text, const std::vector<Reals>& components);
Bytes resultFile(const std::string& text, const std::vector<Singles>& components);
Bytes resultFile(const std::string& text, const Integers& values);
Bytes header(const std::string& text, const std::string& type, std::size_t components,
             std::size_t values);

// nx by ny columns of bricks in `layers` layers of thickness 1, 2, 3 and so on, and the surface
// above them. The prefix is "t". The heads of pm are constant at each output time, 0.5 below the
// surface at the first one. Those of the surface decrease by 0.5 from node to node.
struct Grid {
    int nx = 1, ny = 1, layers = 1;
    int times = 1;
};
Problem brickProblem(const Grid& grid);

// A column of one brick with two output times, and a control file that includes another file.
Problem twoTimes();

// The simulator's files up to an output time, for data sets to which later runs append. Saturations
// exist at every second output time.
Problem appendedTimes(int times);

// Adds a dual continuum on all nodes and elements of pm.
void addDual(Problem& problem, std::int32_t nodes);

// Adds the files of a domain on the top sheet. It has its own nodes in the order of the sheet, with
// global numbers after `nodesBefore`. The further records come after those that all domains have.
void addSheetDomain(Problem& problem, const Grid& grid, const std::string& tag, int nodesBefore,
                    const Bytes& furtherCoordinates, const Bytes& furtherElements);

// Changes payload word `index` of record `number`, both from 0.
void patch(Bytes& file, int number, int index, std::int32_t value);

// Write all files of a problem, and one file; and read a file.
void write(const Problem& problem);
void put(const std::string& path, std::string_view contents);
Bytes get(const std::string& path);

// Returns the names of the files in the folder, without those that begin with a point.
std::set<std::string> filesHere();

// Reads a text or binary data set without the value of Date_Created.
Bytes getDated(const std::string& path);

// Expects the text of a file of tests/expected. With the environment variable
// MESHRAKE_REWRITE_EXPECTED, which tools/rewrite_expected.sh sets, the text is written there
// instead.
Bytes expected(const std::string& name);
void expectFile(const std::string& name, const std::string& text);

// An empty working directory, which is removed at the end of the scope.
struct Folder {
    Folder();
    ~Folder();
    Folder(const Folder&) = delete;
    Folder& operator=(const Folder&) = delete;
    std::filesystem::path path, before;
};

// Writes a sample problem of make_problem with the prefix "t" into the working directory.
void makeProblem(const std::string& options);

} // namespace sample_files

#include "tvncommon/io/TVNBinaryFile_readers.hpp"
#include "tvncommon/io/TVNBinaryFile_writers.hpp"

#include "tests/support/runs.hpp"
#include "tvncommon/io/TVNBinaryFile.hpp"
#include "tvncommon/io/file_units.hpp"
#include "tvncommon/io/io_layer.hpp"

#include <algorithm>
#include <array>
#include <sstream>

namespace {

using namespace TVNBinaryFile;
using runs::expectEnd;
using sample_files::Bytes;
using sample_files::Integers;
using sample_files::Reals;

class BinaryFile : public runs::Files {
protected:
    ~BinaryFile() override { resetWriters(); }
};

std::string padded(std::string text, std::size_t length = 80) {
    text.resize(length, ' ');
    return text;
}

std::string newer(const std::string& text, const std::string& rest) {
    return padded(text, 55) + "#!TVN" + rest;
}

TEST_F(BinaryFile, Headers) {
    const std::string rest = "001LER08030000000012", front(53, 't');
    std::ostringstream report;
    for (const std::string& header :
         {newer("10.5 a free message", rest), newer("10.5   message", rest),
          newer(front + " m", rest), padded(" 10.5 older"), padded(padded("1", 55) + "#!tvn"),
          padded(padded("1", 55) + "#!TV", 79) + "x", std::string(79, 'x'), padded(""),
          newer(std::string(54, ' ') + "1", "001LER08010000000001"),
          newer(std::string(54, '1'), "001LER08010000000001"), newer("1", "0x1LER08010000000001"),
          newer("1", "001LER081.0000000001"), newer("1", "001LER08000000000001"),
          newer("1", "001LER08019999999999"), newer("1", "001LER0801        -7")}) {
        BinaryHeader h;
        const std::string ending =
            runs::endingOf([&] { h = parseTVNBinFileHeader(header, "file"); });
        report << header << "\n  " << ending;
        if (ending.empty())
            report << (h.isOldFormat ? "older, " : "newer, ") << isNewerFileFormat(header)
                   << ", time '" << h.timestamp << "', message '" << h.message << "', " << h.magic
                   << " " << h.formatVersion << " " << h.byteOrder << " " << h.dataType << " "
                   << h.numComponents << " " << h.numValues;
        report << "\n";
    }
    sample_files::expectFile("headers.txt", report.str());
}

// Returns components of `n` equal values.
std::vector<Reals> componentsOf(std::size_t components, std::size_t n) {
    return std::vector(components, Reals(n, 1.25));
}

Bytes olderFile(const std::vector<Reals>& components) {
    Bytes file = sample_files::textRecord("1.0 older", 80);
    for (std::size_t i = 0; i < components[0].size(); ++i) {
        Reals node;
        for (const Reals& component : components) node.push_back(component[i]);
        file += sample_files::realRecord(node);
    }
    return file;
}

void read(int components, std::int32_t n) {
    std::vector<Reals> all(static_cast<std::size_t>(components), Reals(8));
    std::array<double*, 6> arrays{};
    for (std::size_t c = 0; c < all.size(); ++c) arrays[c] = all[c].data();
    if (components == 1)
        read_r8_1d("file", n, arrays[0]);
    else
        read_r8_components("file", n, components, arrays.data());
}

TEST_F(BinaryFile, ShortFilesAndOtherSizesEndTheRun) {
    const Bytes header = sample_files::header("1.0", "R08", 3, 5);
    const std::vector<Reals> good = componentsOf(3, 5),
                             shortSecond = {good[0], {1, 2, 3, 4}, good[2]};
    const Bytes ten = sample_files::resultFile("0", componentsOf(1, 10));
    const auto reading = [](int components) { return [=] { read(components, 5); }; };
    const auto readingSafely = [](std::int32_t n) {
        return [=] { read_safe_r8_1d("file", n, Reals(11).data()); };
    };
    const auto writing = [](std::int32_t first, std::int32_t last) {
        return [=] { write_r8_1d("file", "0", first, last, Reals(10)); };
    };
    const auto counting = [] { numVals_r8_1d("file"); };
    const std::tuple<std::string, Bytes, std::function<void()>> cases[] = {
        {"empty", "", reading(1)},
        {"short header", sample_files::textRecord("1.0", 79), reading(3)},
        {"header alone", header, reading(1)},
        {"short values", sample_files::resultFile("1.0", componentsOf(1, 4)), reading(1)},
        {"short component", sample_files::resultFile("1.0", shortSecond), reading(3)},
        {"two components", sample_files::resultFile("1.0", componentsOf(2, 5)), reading(3)},
        {"older, four nodes", olderFile(componentsOf(3, 4)), reading(3)},
        {"eleven values of ten", ten, readingSafely(11)},
        {"cut in the values", ten.substr(0, 100), readingSafely(10)},
        {"cut in the size", ten.substr(0, 90), counting},
        {"cut in the header", ten.substr(0, 80), counting},
        {"write from 0", "", writing(0, 1)},
        {"write to 11", "", writing(10, 11)}};
    std::string report;
    const auto add = [&](const std::string& what, const std::function<void()>& call) {
        report += what + ": " + runs::endingOf(call) + "\n";
    };
    for (const auto& [what, contents, call] : cases) {
        sample_files::put("file", contents);
        add(what, call);
    }
    std::filesystem::remove("file");
    add("missing", [] { read(1, 0); });
    // The first write is of the length before the header, the third of the values.
    static int writesLeft;
    system_calls::table.write = [](int descriptor, const void* from, std::size_t size) {
        const bool fails = descriptor > 2 && --writesLeft < 0;
        return fails ? -1 : runs::keepingTable().write(descriptor, from, size);
    };
    for (const int writes : {0, 1, 2}) {
        writesLeft = writes;
        add("full disk after " + std::to_string(writes) + " writes", writing(1, 10));
    }
    sample_files::expectFile("short_files.txt", report);
}

// Compares the files of the writers with the expected bytes, and reads them back.
TEST_F(BinaryFile, WritersAndReadersOfBothFormats) {
    const Reals table{1, 2, 3, 4, 5, 6, 7, 8}; // two columns of four rows
    const std::vector<float> singles{1, 2, 3, 4, 5, 6, 7, 8};
    for (const bool old : {false, true}) {
        setUseOldFormat(old);
        const std::vector<Reals> part{{2, 3}, {6, 7}};
        write_r8_2d("file", "  1.5 text", 2, 3, 2, table);
        const Bytes text = sample_files::textRecord("1.5 text", 80);
        EXPECT_EQ(sample_files::get("file"),
                  old ? text + sample_files::realRecord({2, 6}) + sample_files::realRecord({3, 7})
                      : sample_files::resultFile("1.5 text", part));
        Reals read(4);
        std::string header;
        read_r8_2d("file", 2, 2, read.data(), &header);
        EXPECT_EQ(read, Reals({2, 3, 6, 7}));
        EXPECT_EQ(isNewerFileFormat(header), !old);

        write_r4_2d("file", "1", 2, 3, 2, singles);
        std::vector<float> readSingles(4);
        read_r4_2d("file", 2, 2, readSingles.data());
        EXPECT_EQ(readSingles, std::vector<float>({2, 3, 6, 7}));

        // The components of a tensor are columns.
        write_r8_2d("file", "1", 1, 1, 6, std::span(table).first(6));
        std::array<double, 6> t{};
        read_r8_tensor("file", 1, &t[5], &t[4], &t[3], &t[2], &t[1], &t[0], &header);
        EXPECT_EQ(t, (std::array<double, 6>{6, 5, 4, 3, 2, 1}));
        write_r8_2d("file", "1", 1, 1, 3, std::span(table).first(3));
        read_r8_vec3("file", 1, &t[2], &t[1], &t[0]);
        write_r8_2d("file", "1", 1, 1, 2, std::span(table).last(2));
        read_r8_vec2("file", 1, &t[4], &t[3]);
        EXPECT_EQ(t, (std::array<double, 6>{3, 2, 1, 8, 7, 1}));
        write_r4_2d("file", "1", 1, 1, 6, std::span(singles).first(6));
        std::array<float, 6> u{};
        read_r4_tensor("file", 1, &u[5], &u[4], &u[3], &u[2], &u[1], &u[0]);
        EXPECT_EQ(u, (std::array<float, 6>{6, 5, 4, 3, 2, 1}));
        write_r4_2d("file", "1", 1, 1, 3, std::span(singles).first(3));
        read_r4_vec3("file", 1, &u[2], &u[1], &u[0]);
        write_r4_2d("file", "1", 1, 1, 2, std::span(singles).last(2));
        read_r4_vec2("file", 1, &u[4], &u[3]);
        EXPECT_EQ(u, (std::array<float, 6>{3, 2, 1, 8, 7, 1}));
    }
    resetWriters();
    write_r4_2d("file", "1", 1, 1, 2, singles);
    EXPECT_TRUE(isNewerFileFormat(readTVNBinFileHeader("file")));
}

TEST_F(BinaryFile, OneComponentOfAKnownLength) {
    const Integers numbers{-1, 0, 7};
    const std::vector<float> singles{0.5F, 2};
    const Reals reals{1, 2, 3, 4, 5, 6, 7, 8, 9, 10};
    write_i4_1d("i", "0", 1, 3, numbers);
    write_r4_1d("s", "0", 2, 2, singles);
    write_r8_1d("r", "0", 1, 10, reals);
    write_r8_1d("none", "0", 1, 0, reals);
    EXPECT_EQ(sample_files::get("i"), sample_files::resultFile("0", numbers));
    EXPECT_EQ(std::tuple(numVals_i4_1d("i"), numVals_r4_1d("s"), numVals_r8_1d("r")),
              std::tuple(3, 1, 10));
    EXPECT_EQ(numVals_r8_1d("none"), 0);

    Integers readNumbers(3);
    std::vector<float> readSingles(1);
    Reals readReals(11);
    std::string header;
    read_safe_i4_1d("i", 3, readNumbers.data(), &header);
    read_safe_r4_1d("s", 1, readSingles.data());
    read_safe_r8_1d("r", 10, readReals.data());
    EXPECT_EQ(header, padded("0", 55) + "#!TVN001LEI04010000000003");
    EXPECT_EQ(readNumbers, numbers);
    EXPECT_EQ(readSingles, std::vector<float>{2});
    EXPECT_EQ(readReals[9], 10);
    read_r8_1d("r", 2, readReals.data(), &header);
    EXPECT_EQ(header, padded("0", 55) + "#!TVN001LER08010000000010");

    // A long record continues after a negative length.
    Bytes file = sample_files::header("0", "I04", 1, 3),
          first = sample_files::integerRecord({1, 2});
    first[0] = first[12] = -8;
    first.replace(1, 3, 3, '\xff').replace(13, 3, 3, '\xff');
    sample_files::put("long", file + first + sample_files::integerRecord({3}));
    EXPECT_EQ(numVals_i4_1d("long"), 3);
    std::ranges::fill(readNumbers, 0);
    read_safe_i4_1d("long", 3, readNumbers.data());
    EXPECT_EQ(readNumbers, Integers({1, 2, 3}));

    // The checked readers read only the bytes that they need.
    file = sample_files::get("i");
    file[0] = 81;
    sample_files::put("odd", file.substr(0, file.size() - 4));
    read_safe_i4_1d("odd", 3, readNumbers.data(), &header);
    EXPECT_EQ(readNumbers, numbers);
    EXPECT_EQ(header, padded("0", 55) + "#!TVN001LEI04010000000003");
    file[88] = 15; // bytes after the last whole value are ignored
    sample_files::put("odd", file);
    read_safe_i4_1d("odd", 3, readNumbers.data());
}

TEST_F(BinaryFile, InvalidArgumentsStayInsideTheArrays) {
    for (const bool old : {false, true}) {
        setUseOldFormat(old);
        for (const std::int32_t columns : {0, -1, -2147483647 - 1}) {
            write_r8_2d("file", "1.0 m", 1, 0, columns, {});
            read_r8_2d("file", old ? 0 : 2, columns, nullptr);
            expectEnd("FATAL",
                      "Error writing values to file file\nValues 1 to 1 of an array of 0\n",
                      [&] { write_r8_2d("file", "1.0 m", 1, 1, columns, Reals{1}); });
        }
    }
    resetWriters();
    const int unit = file_units::getUnit();
    ASSERT_EQ(io_layer::openRecordsReplace(unit, "short"), io_layer::ok);
    int status = 1;
    writeFormattedHeader(unit, std::string(90, 'm'), "I", 1, 2, status);
    EXPECT_EQ(status, io_layer::ok);
    file_units::freeUnit(unit);
    EXPECT_EQ(readTVNBinFileHeader("short"), std::string(55, 'm') + "#!TVN001LEI  010000000002");
}

} // namespace

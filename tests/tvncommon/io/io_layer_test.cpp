#include "tvncommon/io/io_layer.hpp"

#include "tests/support/runs.hpp"
#include "tvncommon/io/byte_file.hpp"
#include "tvncommon/io/file_units.hpp"
#include "tvncommon/io/system_calls.hpp"

#include <algorithm>
#include <cerrno>
#include <map>

namespace {

using namespace io_layer;
using namespace std::string_literals;
using namespace sample_files;
using runs::expectEnd;

class IoLayer : public runs::Files {};

// Returns a record of several sub-records, each with this length before and after its payload. A
// negative length means that another sub-record follows.
Bytes subRecords(const std::vector<std::pair<std::int32_t, std::string>>& parts) {
    Bytes file;
    for (const auto& [signedLength, payload] : parts) {
        const Bytes length = bytesOf(Integers{signedLength});
        file += length + payload + length;
    }
    return file;
}

// Returns the status of each read of a record of these sizes, up to the first that fails.
std::vector<int> statuses(const Bytes& file, const std::vector<std::int64_t>& sizes) {
    put("file", file);
    const int unit = file_units::openRecordsRead("file");
    std::vector<int> found;
    for (const std::int64_t size : sizes) {
        std::string into(static_cast<std::size_t>(size), '?');
        found.push_back(readRecord(unit, into.data(), size));
        if (found.back() != ok) break;
    }
    releaseUnit(unit);
    return found;
}

void writeRecords(const std::string& payload, std::int64_t maximumSubRecord, int count) {
    const int unit = takeUnit();
    ASSERT_EQ(openRecordsReplace(unit, "file"), ok);
    for (int i = 0; i < count; ++i)
        EXPECT_EQ(writeRecord(unit, payload.data(), static_cast<std::int64_t>(payload.size()),
                              maximumSubRecord),
                  ok);
    EXPECT_EQ(releaseUnit(unit), ok);
}

TEST_F(IoLayer, BytesOfRecords) {
    const std::map<std::pair<std::string, std::int64_t>, Bytes> cases = {
        {{"", 3}, "\0\0\0\0\0\0\0\0"s},
        {{"abc", 3}, "\3\0\0\0abc\3\0\0\0"s},
        {{"abcd", 3}, "\xfd\xff\xff\xff"s + "abc\3\0\0\0\1\0\0\0d\xff\xff\xff\xff"s},
        {{"abcdef", 2},
         "\xfe\xff\xff\xff"s + "ab\2\0\0\0\xfe\xff\xff\xff"s + "cd\xfe\xff\xff\xff\2\0\0\0"s +
             "ef\xfe\xff\xff\xff"s}};
    for (const auto& [given, bytes] : cases) {
        writeRecords(given.first, given.second, 1);
        EXPECT_EQ(get("file"), bytes) << given.first;
        const int unit = file_units::openRecordsRead("file");
        std::string back(given.first.size(), '?');
        EXPECT_EQ(beginRecord(unit), ok);
        for (char& c : back) EXPECT_EQ(readInRecord(unit, &c, 1), ok);
        EXPECT_EQ(readInRecord(unit, back.data(), 1), readFailed);
        EXPECT_EQ(endRecord(unit), ok);
        EXPECT_EQ(back, given.first);
        EXPECT_EQ(beginRecord(unit), endOfFile);
        releaseUnit(unit);
    }
}

TEST_F(IoLayer, RecordsBeyondTheReadBuffer) {
    std::string large(200001, ' ');
    for (std::size_t i = 0; i < large.size(); ++i) large[i] = static_cast<char>(i * 7 + i / 256);
    for (const std::int64_t maximumSubRecord : {70000, 32768, 32760, 997}) {
        writeRecords(large, maximumSubRecord, 3);
        const int unit = file_units::openRecordsRead("file");
        for (const std::int64_t size : {200001, 40000, 12}) {
            std::string into(static_cast<std::size_t>(size), '?');
            ASSERT_EQ(readRecord(unit, into.data(), size), ok);
            EXPECT_TRUE(large.starts_with(into)) << maximumSubRecord;
        }
        EXPECT_EQ(bytesLeft(unit), 0);
        releaseUnit(unit);
    }
}

TEST_F(IoLayer, CutRecordsAndWrongLengths) {
    const Bytes first = record("abcde");
    const Bytes whole = first + subRecords({{-3, "fgh"}, {-2, "ij"}, {1, "k"}});
    for (std::size_t length = 0; length <= whole.size(); ++length) {
        std::vector<int> expected{ok, ok, endOfFile};
        if (length < whole.size()) expected = {ok, length == first.size() ? endOfFile : readFailed};
        if (length < first.size()) expected = {length == 0 ? endOfFile : readFailed};
        EXPECT_EQ(statuses(whole.substr(0, length), {5, 6, 1}), expected) << length;
    }
    // The sign of a trailing length is ignored. In the last case the next sub-record is missing.
    const Bytes two = subRecords({{-2, "ab"}, {0, ""}});
    const std::pair<Bytes, std::int64_t> good[] = {{record("abcd"), 2},
                                                   {record("abcd"), 0},
                                                   {"\4\0\0\0abcd\xfc\xff\xff\xff"s, 4},
                                                   {subRecords({{-2, "ab"}, {2, "cd"}}), 1},
                                                   {two, 2}},
                                         bad[] = {{record("abcd"), 5},
                                                  {"\4\0\0\0abcd\5\0\0\0"s, 4},
                                                  {"\3\0\0\0abcd\4\0\0\0"s, 3},
                                                  {"\0\0\0\x80"s + "abcd", 4},
                                                  {two, 3},
                                                  {subRecords({{-2, "ab"}}), 2}};
    for (const auto& [file, size] : good)
        EXPECT_EQ(statuses(file, {size}), std::vector{ok}) << file;
    for (const auto& [file, size] : bad)
        EXPECT_EQ(statuses(file, {size}), std::vector{readFailed}) << testing::PrintToString(file);
}

TEST_F(IoLayer, Lines) {
    const std::string longLine(70000, 'x');
    const std::map<std::string, Texts> cases = {{"", {}},
                                                {"\n\nb\n", {"", "", "b"}},
                                                {"a\rb\r\r\n\r\nlast", {"a\rb\r", "", "last"}},
                                                {" a\t \n"s + '\0' + "b\n", {" a\t ", "\0b"s}},
                                                {longLine + "\n" + longLine, {longLine, longLine}}};
    for (const auto& [contents, expected] : cases) {
        put("file", contents);
        const int unit = file_units::openTextRead("file");
        for (int pass = 0; pass < 2; ++pass) {
            Texts lines;
            for (std::string line; readLine(unit, line) == ok;) lines.push_back(line);
            EXPECT_EQ(lines, expected) << contents.substr(0, 20);
            EXPECT_EQ(rewind(unit), ok);
        }
        releaseUnit(unit);
    }
}

// A caller that uses the whole line must not get a part of it without an error.
TEST_F(IoLayer, LongLines) {
    const std::string longest(maximumLineBytes, ' ');
    put("file", longest + "\n" + longest + "1\r\nnext\n");
    const int unit = file_units::openTextRead("file");
    std::string line;
    EXPECT_EQ(readLine(unit, line), ok);
    EXPECT_EQ(readLine(unit, line, LongLine::cut), ok);
    EXPECT_EQ(line, longest);
    EXPECT_EQ(readLine(unit, line, LongLine::cut), ok);
    EXPECT_EQ(line, "next");
    EXPECT_EQ(rewind(unit), ok);
    EXPECT_EQ(readLine(unit, line), ok);
    EXPECT_EQ(readLine(unit, line), invalidData);
    EXPECT_EQ(rewind(unit), ok);
    EXPECT_TRUE(file_units::readLine(unit, line));
    expectEnd("INPUT", "Error reading file: file\nA line has more than 1048576 characters.",
              [&] { file_units::readLine(unit, line); });
}

TEST_F(IoLayer, ControlCharactersAreReplacedOnTheScreen) {
    const std::string text = "\x1b[2J\r\b"s + '\0' + "\x7f\t\n \xC3\xA9\x9b";
    const std::string shown = "?[2J????\t\n \xC3\xA9\x9b";
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    const int unit = takeUnit();
    ASSERT_EQ(openTextReplace(unit, "file", Flush::everyLine), ok);
    for (const int to : {screen, standardError, unit}) {
        EXPECT_EQ(writeLine(to, text), ok);
        EXPECT_EQ(writeBlock(to, text.data(), text.size()), ok);
    }
    EXPECT_EQ(testing::internal::GetCapturedStdout(), shown + "\n" + shown);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), shown + "\n" + shown);
    EXPECT_EQ(get("file"), text + "\n" + text);
    releaseUnit(unit);
}

// Texts and blocks are written in the order of the calls, also if text is pending.
TEST_F(IoLayer, WritesAroundTheSizeOfTheBuffer) {
    for (const std::size_t size : {0UL, 1UL, 32766UL, 32767UL, 32768UL, 32769UL, 100000UL}) {
        const std::string text(size, 'a');
        for (const Flush flushing : {Flush::everyLine, Flush::inBlocks}) {
            const int unit = file_units::openTextReplace("file", flushing);
            EXPECT_EQ(writeLine(unit, text), ok);
            EXPECT_TRUE(flushing == Flush::inBlocks || get("file") == text + "\n");
            EXPECT_EQ(writeText(unit, "b"), ok);
            EXPECT_EQ(writeBlock(unit, text.data(), text.size()), ok);
            EXPECT_EQ(writeText(unit, "c"), ok);
            EXPECT_EQ(releaseUnit(unit), ok);
            EXPECT_EQ(get("file"), text + "\nb" + text + "c") << size;
        }
    }
}

TEST_F(IoLayer, ReadsAndWritesOfNoBytes) {
    put("file", "text\n");
    const int cut = file_units::openTextRead("file");
    std::string line, block(100000, ' ');
    put("large", record(block + block));
    const int large = file_units::openRecordsRead("large");
    EXPECT_EQ(beginRecord(large), ok);
    // A read that fails, and a file that is shorter than at its open.
    for (const bool fails : {true, false}) {
        static std::ptrdiff_t answer;
        answer = fails ? -1 : 0;
        system_calls::table.readBoth = [](int, void*, std::size_t, void*, std::size_t) {
            return errno = EIO, answer;
        };
        system_calls::table.read = [](int, void*, std::size_t) { return errno = EIO, answer; };
        EXPECT_EQ(readInRecord(large, block.data(), 100000), readFailed);
    }
    EXPECT_EQ(beginRecord(cut), readFailed);
    EXPECT_EQ(readLine(cut, line), readFailed);
    system_calls::table.write = [](int, const void*, std::size_t) { return std::ptrdiff_t{0}; };
    EXPECT_EQ(writeLine(file_units::openTextReplace("third", Flush::everyLine), "x"), writeFailed);
}

// A full quota may be reported only when the file is closed.
TEST_F(IoLayer, CloseReportsFailedWrites) {
    system_calls::table.close = [](int descriptor) {
        system_calls::systemTable().close(descriptor);
        return errno = EDQUOT, -1;
    };
    const int written = file_units::openTextReplace("file", Flush::inBlocks);
    EXPECT_EQ(writeLine(written, "x"), ok);
    EXPECT_EQ(releaseUnit(written), writeFailed);
    EXPECT_EQ(releaseUnit(file_units::openRecordsRead("file")), ok);
}

// Disk space is reserved only for a large file, and the rest of it is freed at the close. If the
// reservation fails, the file is written all the same.
TEST_F(IoLayer, SpaceIsReservedForLargeFiles) {
    static std::int64_t reservedEnd, cutAt;
    static int answer;
    system_calls::table.reserve = [](int, std::int64_t position, std::int64_t size) {
        errno = ENOSPC;
        return reservedEnd = position + size, answer;
    };
    system_calls::table.truncate = [](int, std::int64_t size) {
        cutAt = size;
        errno = EIO;
        return answer;
    };
    const std::string block(1048576, 'x');
    for (const int refused : {0, -1})
        for (const int blocks : {2, 80}) {
            reservedEnd = cutAt = 0;
            answer = refused;
            const int unit = file_units::openTextReplace("file", Flush::inBlocks);
            for (int i = 0; i < blocks; ++i)
                ASSERT_EQ(writeBlock(unit, block.data(), block.size()), ok);
            EXPECT_EQ(releaseUnit(unit), blocks == 80 && refused != 0 ? writeFailed : ok);
            const std::int64_t size = blocks * std::int64_t{1048576};
            EXPECT_EQ(std::filesystem::file_size("file"), static_cast<std::uintmax_t>(size));
            EXPECT_EQ(cutAt, blocks == 2 ? 0 : size);
            EXPECT_EQ(reservedEnd > size, blocks == 80 && refused == 0);
        }
}

TEST_F(IoLayer, StatusesOfAnOpen) {
    put("file", "");
    std::filesystem::create_directory("folder");
    std::filesystem::create_symlink("loop", "loop");
    for (const auto& [path, status] : std::map<std::string, int>{{"missing", fileNotFound},
                                                                 {"folder", openFailed},
                                                                 {"loop", openFailed},
                                                                 {"file/x", invalidPath},
                                                                 {"file\0"s, invalidPath}}) {
        byte_file::File file;
        std::int64_t size = 0;
        const int unchecked = takeUnit(), written = path == "missing" ? ok : status;
        EXPECT_EQ(openRecordsRead(takeUnit(), path), status) << path;
        EXPECT_EQ(openRecordsUnchecked(unchecked, path), path == "folder" ? ok : status) << path;
        EXPECT_EQ(readRecord(unchecked, &file, 1), readFailed) << path;
        EXPECT_EQ(bytesLeft(unchecked), 0) << path;
        EXPECT_EQ(byte_file::open(path, system_calls::OpenMode::read, file, size), status) << path;
        EXPECT_EQ(openTextForCommit(takeUnit(), path), written) << path;
        EXPECT_EQ(openTextReplace(takeUnit(), path, Flush::inBlocks), written) << path;
    }
    for (const auto& [length, status] : std::map<std::size_t, int>{{300, ok}, {301, invalidPath}}) {
        const std::string path = "." + std::string(length - 5, '/') + "file";
        bool found = false;
        EXPECT_EQ(exists(path, found), status);
        EXPECT_EQ(found, status == ok);
        EXPECT_EQ(openTextRead(takeUnit(), path), status);
        EXPECT_EQ(openTextForCommit(takeUnit(), path), status);
    }
    system_calls::table.open = [](const char*, system_calls::OpenMode) { return -1; };
    for (const auto& [error, status] :
         std::map<int, int>{{EACCES, permissionDenied}, {EMFILE, tooManyOpenFiles}}) {
        errno = error;
        EXPECT_EQ(openTextRead(takeUnit(), "file"), status);
    }
}

TEST_F(IoLayer, UnitsThatAreNotOpenOrOnlyRead) {
    put("file", "line\n");
    const int none = takeUnit(), reading = file_units::openTextRead("file");
    std::string line;
    EXPECT_EQ(readLine(none, line), readFailed);
    EXPECT_EQ(beginRecord(none), readFailed);
    EXPECT_EQ(rewind(none), readFailed);
    EXPECT_EQ(bytesLeft(none), 0);
    for (const int unit : {none, reading}) {
        EXPECT_EQ(writeLine(unit, "x"), writeFailed);
        EXPECT_EQ(writeBlock(unit, "x", 1), writeFailed);
        EXPECT_EQ(flush(unit), writeFailed);
    }
    EXPECT_EQ(commitUnit(none), writeFailed);
    EXPECT_EQ(readLine(reading, line), ok);
}

TEST_F(IoLayer, UnitsRunOut) {
    for (int unit = 1100; unit <= 20000; ++unit) ASSERT_EQ(file_units::getUnit(), unit);
    file_units::freeUnit(1101);
    EXPECT_EQ(file_units::getUnit(), 1101);
    expectEnd("FATAL", "No free file units, range exhausted: [1100,20000]\n\n",
              file_units::getUnit);
    for (const int unit : {1099, 20001})
        expectEnd("FATAL",
                  "File unit " + std::to_string(unit) + " outside of range [1100,20000]\n\n",
                  [=] { file_units::freeUnit(unit); });
    expectEnd("FATAL", "File unit 1100 already free\n\n", [] { file_units::freeUnit(1100); });
}

} // namespace

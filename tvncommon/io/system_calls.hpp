#pragma once

#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <string>

// The only file that calls the operating system. Every call of the I/O layer goes through a table,
// so that a test can make any of them fail.
namespace system_calls {

enum class OpenMode {
    read,     // an existing file or folder
    replace,  // for writing; emptied, or created if missing
    write,    // for writing; keeps its contents, created if missing
    existing, // for writing; keeps its contents, fails if missing
    update,   // for reading and writing; keeps its contents, created if missing
    create    // for reading and writing; fails if a file or link of that name exists
};
enum class FileKind { regular, folder, other };

struct FileInfo {
    FileKind kind = FileKind::other;
    std::int64_t size = 0;
    unsigned permissions = 0;             // the nine bits of owner, group and others
    std::uint64_t device = 0, number = 0; // together, the identity of the file
};

inline constexpr std::size_t largePage = 2097152; // bytes

// Each call returns what the system's call of that name returns, -1 with `errno` on failure.
struct Table {
    int (*open)(const char* path, OpenMode mode);
    std::ptrdiff_t (*read)(int descriptor, void* into, std::size_t size);
    // Reads into the first array and then into the second.
    std::ptrdiff_t (*readBoth)(int descriptor, void* first, std::size_t firstSize, void* second,
                               std::size_t secondSize);
    std::ptrdiff_t (*write)(int descriptor, const void* from, std::size_t size);
    std::int64_t (*seek)(int descriptor, std::int64_t position);
    int (*close)(int descriptor);
    int (*fileInfo)(int descriptor, FileInfo& info);
    int (*exists)(const char* path);
    std::ptrdiff_t (*readAt)(int descriptor, void* into, std::size_t size, std::int64_t position);
    std::ptrdiff_t (*writeAt)(int descriptor, const void* from, std::size_t size,
                              std::int64_t position);
    int (*truncate)(int descriptor, std::int64_t size);
    // Reserves disk space. Succeeds on a file system that does not support it.
    int (*reserve)(int descriptor, std::int64_t position, std::int64_t size);
    // Starts to write these bytes of a file to the disk and does not wait for their end. Does
    // nothing on a system that has no such call.
    int (*startSync)(int descriptor, std::int64_t position, std::int64_t size);
    // Returns once the file's data and size, or a folder's entries, are on the disk.
    int (*sync)(int descriptor);
    // Takes an exclusive advisory lock that ends with the descriptor. If another process holds it,
    // the call waits, or fails with EWOULDBLOCK without `wait`.
    int (*lock)(int descriptor, bool wait);
    int (*rename)(const char* from, const char* to);
    int (*remove)(const char* path);
    int (*setPermissions)(int descriptor, unsigned permissions);
    int (*fileInfoOfName)(const char* path, FileInfo& info);
    // Reads the target of a link, without a NUL. Fails with EINVAL for a name that is not a link.
    std::ptrdiff_t (*readLink)(const char* path, char* into, std::size_t size);
    // Sets `real` to the absolute name of an existing file, without links.
    int (*realPath)(const char* path, std::string& real);
    // Returns memory for `operator new` of a program that links operator_new.cpp, null for a
    // failure. `std::free` frees it. Blocks of `largePage` bytes and more begin at a large page. A
    // test that replaces this entry also counts its own allocations, unless it disables the count.
    void* (*allocate)(std::size_t size);
};

// The table in use. Assign `systemTable()` to restore the real calls.
extern Table table;
Table systemTable();

// Returns the result of a call of the table, which is repeated while a signal interrupts it.
template<class Call>
auto restart(Call call) {
    for (;;) {
        const auto result = call();
        if (result >= 0 || errno != EINTR) return result;
    }
}

// Prepares the process for the run. `main` calls it first.
// - A pipe whose reader has ended and a file size limit make a write fail instead of a signal that
//   ends the process.
// - The descriptor of a closed standard stream is not given to a file.
// - Freed memory is kept for later allocations.
// Returns false if there is no memory for the stack.
bool prepareProcess();

// Local date and time, with its offset from universal time.
struct LocalTime {
    int year, month, day, hour, minute, second;
    int offsetMinutes;
};
LocalTime localTime();

} // namespace system_calls

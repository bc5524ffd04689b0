#include "tecio/data_file.hpp"

#include "tecio/status.hpp"
#include "tvncommon/io/io_layer.hpp"

#include <algorithm>

namespace tecio {

using file_replacement::Replacement;
using io_layer::ok;

namespace {

// Padding of a new file for the headers of later zones. A header has about 80 bytes, and 4 more for
// each variable if some are of elements: 16 pages take at least 300 zones of 30 variables. More
// padding later means a copy of all data, so large zones get more at first: 1/16 of a zone adds
// little to its data. Each copy multiplies the padding by 4, so that there are few copies.
constexpr std::int64_t minimumPadding = 65536;
constexpr std::int64_t maximumInitialPadding = 262144;
constexpr std::int64_t zoneBytesPerPaddingByte = 16;
constexpr std::int64_t paddingGrowth = 4;

constexpr std::int64_t copyBytes = 1048576; // few calls, and little memory

int write(DataFile& f, std::int64_t position, const Bytes& bytes) {
    f.size = std::max(f.size, position + sizeOf(bytes));
    return byte_file::writeAt(f.file, position, bytes.data(), sizeOf(bytes));
}

int syncIfDurable(const DataFile& f) {
    return f.durable ? byte_file::sync(f.file) : ok;
}

// Renames a complete file to the data set.
int commitFile(const DataFile& f, const byte_file::File& file, Replacement& replacement) {
    int status = f.durable ? byte_file::sync(file) : ok;
    if (status == ok)
        status = file_replacement::commit(replacement);
    else
        file_replacement::discard(replacement);
    return status == ok && f.durable ? byte_file::syncFolderOf(replacement.target) : status;
}

// Writes headers or padding one page at a time. The file is valid after each page.
int writePages(DataFile& f, std::int64_t position, const Bytes& bytes, bool lastFirst) {
    const std::int64_t end = position + sizeOf(bytes);
    std::vector<std::int64_t> begins{position};
    while (begins.back() + leftOnPage(begins.back()) < end)
        begins.push_back(begins.back() + leftOnPage(begins.back()));
    if (lastFirst) std::reverse(begins.begin(), begins.end());
    int status = ok;
    for (std::size_t i = 0; i < begins.size() && status == ok; ++i) {
        status = write(f, begins[i],
                       bytes.substr(static_cast<std::size_t>(begins[i] - position),
                                    static_cast<std::size_t>(leftOnPage(begins[i]))));
        if (status == ok) status = syncIfDurable(f);
    }
    return status;
}

int copyData(const byte_file::File& from, std::int64_t fromAt, const byte_file::File& to,
             std::int64_t toAt, std::int64_t size, std::vector<char>& block) {
    for (std::int64_t done = 0; done < size;) {
        const std::int64_t n = std::min(size - done, copyBytes);
        int status = byte_file::readAt(from, fromAt + done, block.data(), n);
        if (status == ok) status = byte_file::writeAt(to, toAt + done, block.data(), n);
        if (status != ok) return status;
        done += n;
    }
    return ok;
}

// Replaces the file by a copy with other records or more padding.
int replaceWithCopy(DataFile& f, std::int64_t padding) {
    const std::int64_t dataBytes = f.dataEnd - f.dataAt;
    const std::int64_t oldDataAt = f.dataAt;
    const Bytes header = bytesBeforeData(f, padding);
    // Allocated before the open, because a failed allocation after it would lose the descriptor.
    std::vector<char> block(static_cast<std::size_t>(std::min(dataBytes, copyBytes)));
    byte_file::File copy;
    Replacement replacement;
    int status = byte_file::openForCommit(f.path, copy, replacement);
    if (status == ok) status = byte_file::writeAt(copy, 0, header.data(), sizeOf(header));
    if (status == ok) status = copyData(f.file, oldDataAt, copy, sizeOf(header), dataBytes, block);
    if (status == ok)
        status = commitFile(f, copy, replacement);
    else
        file_replacement::discard(replacement);
    if (status != ok) {
        byte_file::close(copy);
        return status;
    }
    byte_file::close(f.file);
    f.file = copy;
    f.dataAt = sizeOf(header);
    f.dataEnd = f.size = f.dataAt + dataBytes;
    return ok;
}

// Writes everything before the data into the new file and renames it to the data set.
int writeNewHeader(DataFile& f, std::int64_t zoneBytes) {
    const Bytes header = bytesBeforeData(f, initialPadding(zoneBytes));
    f.dataAt = f.dataEnd = sizeOf(header);
    const int status = write(f, 0, header);
    if (status == ok) return commitFile(f, f.file, f.replacement);
    file_replacement::discard(f.replacement);
    return status;
}

// True if all texts end at the same positions. Then any combination of old and new pages, which a
// kill may leave, is a valid sequence of texts.
bool canPatchInPlace(const Bytes& some, const Bytes& others) {
    const auto endsText = [](const Bytes& bytes, std::size_t at) {
        return bytes.compare(at, 4, "\0\0\0\0", 4) == 0;
    };
    bool can = some.size() == others.size();
    for (std::size_t at = 0; can && at < some.size(); at += 4)
        can = endsText(some, at) == endsText(others, at);
    return can;
}

int updateAux(DataFile& f) {
    if (f.aux.empty()) f.aux = f.auxInFile;
    if (f.aux == f.auxInFile) return ok;
    if (canPatchInPlace(f.aux, f.auxInFile)) return write(f, f.auxAt, f.aux);
    return replaceWithCopy(f, f.dataAt - headersEnd(f, f.headerEnds.size()));
}

} // namespace

Bytes pagesToPublish(DataFile& f) {
    const std::int64_t at = headersEnd(f, f.headerEnds.size());
    Bytes out;
    for (std::size_t z = f.headerEnds.size(); z < f.zones.size(); ++z) {
        addHeader(out, at, zoneHeaderBytes(f.zones[z]));
        f.headerEnds.push_back(at + sizeOf(out));
    }
    padPage(out, at);
    return out;
}

Bytes bytesBeforeData(DataFile& f, std::int64_t padding) {
    Bytes out = fileHeaderBytes(f.fileHeader);
    f.auxAt = sizeOf(out);
    out += f.aux;
    f.zonesAt = sizeOf(out);
    f.headerEnds.clear();
    out += pagesToPublish(f);
    addPadding(out, 0, sizeOf(out) + padding);
    return out + headersEndBytes();
}

std::int64_t initialPadding(std::int64_t zoneBytes) {
    return std::clamp(zoneBytes / zoneBytesPerPaddingByte, minimumPadding, maximumInitialPadding);
}

std::int64_t grownPadding(const DataFile& f) {
    return (f.dataAt - f.zonesAt) * paddingGrowth;
}

bool fitsBeforeData(const DataFile& f, std::int64_t at, const Bytes& pages) {
    return at + sizeOf(pages) + sizeOf(headersEndBytes()) <= f.dataAt;
}

std::string sidecarPath(const std::string& path) {
    return path + ".szhdr";
}

int sidecarStatus(DataFile& f, int status) {
    f.sidecarFailed = status != ok;
    return status;
}

int createDataFile(DataFile& f) {
    const int status =
        sidecarStatus(f, createSidecar(sidecarPath(f.path), f.fileHeader, f.sidecar));
    f.size = 0;
    return status == ok ? byte_file::openForCommit(f.path, f.file, f.replacement) : status;
}

int writeHeader(DataFile& f, std::int64_t zoneBytes) {
    if (f.headerWritten) return ok;
    f.headerWritten = true;
    return f.resumed ? updateAux(f) : writeNewHeader(f, zoneBytes);
}

int flush(DataFile& f) {
    int status = endZone(f);
    if (status == ok) status = writeHeader(f, 0);
    if (status != ok) return status;
    if (f.headerEnds.size() < f.zones.size()) {
        const std::int64_t at = headersEnd(f, f.headerEnds.size());
        const Bytes pages = pagesToPublish(f);
        status = fitsBeforeData(f, at, pages) ? writePages(f, at, pages, false)
                                              : replaceWithCopy(f, grownPadding(f));
    }
    // Bytes after the data are of an interrupted run, or of a longer zone that was replaced.
    if (status == ok && f.size > f.dataEnd) {
        status = byte_file::truncate(f.file, f.dataEnd);
        f.size = f.dataEnd;
    }
    return status;
}

std::int64_t headersEnd(const DataFile& f, std::size_t count) {
    return count == 0 ? f.zonesAt : f.headerEnds[count - 1];
}

// The padding begins at the end of the last header that is kept, which may be on an earlier page
// than the next header. The last page is written first, so that a reader does not find a header
// after a removed one.
int removeHeaders(DataFile& f, std::size_t count) {
    if (f.headerEnds.size() <= count) return ok;
    const std::int64_t begin = headersEnd(f, count), end = f.headerEnds.back();
    Bytes lastPadding, padding;
    padPage(lastPadding, end);
    addPadding(padding, begin, end + sizeOf(lastPadding));
    f.headerEnds.resize(count);
    return writePages(f, begin, padding, true);
}

// The headers are removed first: a reader must not find a zone that is no longer committed, because
// its data may be overwritten.
int removeZones(DataFile& f, std::size_t count) {
    int status = removeHeaders(f, count);
    if (status == ok) status = sidecarStatus(f, rollbackZones(f.sidecar, count));
    if (status != ok) return status;
    for (; f.zones.size() > count; f.zones.pop_back()) f.dataEnd -= layoutOf(f.zones.back()).size;
    return ok;
}

int finish(DataFile& f) {
    int status = flush(f);
    if (status == ok) status = byte_file::sync(f.file);
    if (status == ok) status = byte_file::close(f.file);
    if (status == ok) status = sidecarStatus(f, byte_file::remove(sidecarPath(f.path)));
    return status;
}

} // namespace tecio

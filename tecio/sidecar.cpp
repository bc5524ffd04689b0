#include "tecio/sidecar.hpp"

#include "tecio/status.hpp"
#include "tvncommon/io/io_layer.hpp"

#include <algorithm>
#include <cstring>

namespace tecio {

using io_layer::ok;
using system_calls::OpenMode;

namespace {

constexpr std::string_view magic = "#!TVNSH2";
constexpr std::int64_t checkpointAt = 8;
constexpr std::int64_t contentsAt = 24;
constexpr Checkpoint emptyContents{contentsAt, 14695981039346656037U}; // offset basis of FNV-1a

static_assert(sizeof(Checkpoint) == contentsAt - checkpointAt);

// Returns a checkpoint that also includes these bytes. The 64-bit FNV-1a hash needs only the hash
// of the bytes before them, so a commit does not read the sidecar. The factor is the FNV prime.
Checkpoint extended(Checkpoint checkpoint, std::string_view bytes) {
    checkpoint.size += static_cast<std::int64_t>(bytes.size());
    for (const char c : bytes) {
        checkpoint.checksum ^= static_cast<unsigned char>(c);
        checkpoint.checksum *= 1099511628211U;
    }
    return checkpoint;
}

int writeDurably(const Sidecar& sidecar, std::int64_t at, const void* from, std::int64_t size) {
    const int status = byte_file::writeAt(sidecar.file, at, from, size);
    return status == ok && sidecar.durable ? byte_file::sync(sidecar.file) : status;
}

int writeCheckpoint(const Sidecar& sidecar) {
    return writeDurably(sidecar, checkpointAt, &sidecar.checkpoints.back(), sizeof(Checkpoint));
}

// Reads the valid contents. Returns `damagedSidecar` if their hash differs.
int readContents(const byte_file::File& file, std::int64_t size, Bytes& contents) {
    char begin[contentsAt];
    Checkpoint checkpoint;
    if (size < contentsAt) return damagedSidecar;
    int status = byte_file::readAt(file, 0, begin, sizeof begin);
    if (status != ok) return status;
    std::memcpy(&checkpoint, begin + checkpointAt, sizeof checkpoint);
    if (std::string_view(begin, magic.size()) != magic) return damagedSidecar;
    if (checkpoint.size < contentsAt || checkpoint.size > size) return damagedSidecar;
    contents.resize(static_cast<std::size_t>(checkpoint.size - contentsAt));
    status = byte_file::readAt(file, contentsAt, contents.data(), checkpoint.size - contentsAt);
    if (status != ok) return status;
    return extended(emptyContents, contents).checksum == checkpoint.checksum ? ok : damagedSidecar;
}

} // namespace

int createSidecar(const std::string& path, const FileHeader& header, Sidecar& sidecar) {
    const Bytes contents = fileHeaderBytes(header);
    sidecar.checkpoints = {extended(emptyContents, contents)};
    Bytes all(magic);
    all.append(reinterpret_cast<const char*>(&sidecar.checkpoints.back()), sizeof(Checkpoint));
    all += contents;
    file_replacement::Replacement replacement;
    int status = byte_file::openForCommit(path, sidecar.file, replacement);
    if (status == ok) status = writeDurably(sidecar, 0, all.data(), sizeOf(all));
    if (status == ok)
        status = file_replacement::commit(replacement);
    else
        file_replacement::discard(replacement);
    const bool syncs = status == ok && sidecar.durable;
    return syncs ? byte_file::syncFolderOf(replacement.target) : status;
}

int openSidecar(const std::string& path, OpenMode mode, Sidecar& sidecar, FileHeader& header,
                std::vector<Zone>& zones, std::uint64_t& checksum) {
    std::int64_t size = 0;
    int status = byte_file::open(path, mode, sidecar.file, size);
    if (status != ok) return status;
    Bytes contents;
    status = readContents(sidecar.file, size, contents);
    if (status != ok) return status;
    Reader reader{contents};
    header = readFileHeader(reader);
    sidecar.checkpoints = {extended(emptyContents, reader.bytes.substr(0, reader.position))};
    while (reader.good && reader.position < contents.size()) {
        const std::size_t begin = reader.position;
        zones.push_back(readZone(reader, header.variables.size()));
        checksum = readWord(reader);
        // A zone shares only arrays of earlier zones.
        const auto number = static_cast<std::int64_t>(zones.size());
        reader.good = reader.good && greatestShare(zones.back()) < number;
        const std::string_view bytes = reader.bytes.substr(begin, reader.position - begin);
        sidecar.checkpoints.push_back(extended(sidecar.checkpoints.back(), bytes));
    }
    return reader.good ? ok : damagedSidecar;
}

int commitZone(Sidecar& sidecar, const Zone& zone, std::uint64_t checksum) {
    Bytes bytes = zoneHeaderBytes(zone) + dataBeginBytes(zone);
    bytes.append(reinterpret_cast<const char*>(&checksum), sizeof checksum);
    const Checkpoint& checkpoint = sidecar.checkpoints.back();
    const int status = writeDurably(sidecar, checkpoint.size, bytes.data(), sizeOf(bytes));
    if (status != ok) return status;
    sidecar.checkpoints.push_back(extended(checkpoint, bytes));
    return writeCheckpoint(sidecar);
}

int rollbackZones(Sidecar& sidecar, std::size_t count) {
    sidecar.checkpoints.resize(count + 1);
    return writeCheckpoint(sidecar);
}

} // namespace tecio

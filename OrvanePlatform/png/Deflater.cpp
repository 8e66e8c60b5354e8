#include "OrvanePlatform/png/Deflater.h"

#include "OrvanePlatform/png/UpperHalves.h"

#include <isa-l/igzip_lib.h>

namespace orvane::png {

namespace {

// Level 1 is as quick and leaves pictures of text 1 to 2 % larger, level 3 takes several times as long.
constexpr uint32_t level = 2;
constexpr std::size_t levelMemory = ISAL_DEF_LVL2_LARGE;
// Blocks that were waiting come with later input, and nothing shrinks noise.
constexpr qsizetype spareBytes = qsizetype(64) * 1024;

} // namespace

Deflater::Deflater()
    : m_stream(std::make_unique<isal_zstream>())
    , m_levelMemory(levelMemory) {
    isal_deflate_init(m_stream.get());
    m_stream->gzip_flag = IGZIP_ZLIB;
    m_stream->level = level;
    m_stream->level_buf = m_levelMemory.data();
    m_stream->level_buf_size = static_cast<uint32_t>(m_levelMemory.size());
}

Deflater::~Deflater() = default;

bool Deflater::append(std::span<const uchar> input, bool isLast, QByteArray& output) {
    // Nothing is written to it: the library's pointer has lost a const.
    m_stream->next_in = const_cast<uint8_t*>(input.data());
    m_stream->avail_in = static_cast<uint32_t>(input.size());
    m_stream->end_of_stream = isLast ? 1 : 0;
    do {
        const qsizetype written = output.size();
        const qsizetype room = static_cast<qsizetype>(m_stream->avail_in) + spareBytes;
        output.resize(written + room);
        m_stream->next_out = reinterpret_cast<uint8_t*>(output.data()) + written;
        m_stream->avail_out = static_cast<uint32_t>(room);
        const int result = isal_deflate(m_stream.get());
        clearUpperHalves();
        output.chop(m_stream->avail_out);
        if (result != COMP_OK)
            return false;
    } while (m_stream->avail_out == 0);
    return true;
}

} // namespace orvane::png

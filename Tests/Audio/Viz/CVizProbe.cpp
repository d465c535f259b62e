// SPDX-License-Identifier: GPL-3.0-or-later
#include "Tests/Audio/Viz/CVizProbe.h"

#include "Core/CMemoryReaderStatic.h"
#include "Core/CWriteSeqBuffer.h"
#include "Tests/Support/CTestModule.h"

#include <gtest/gtest.h>

namespace qrb {

std::uint32_t CVizProbe::listen(const std::string& name, std::int32_t kind)
{
    const std::uint32_t id = (m_clientId << 16) + ++m_counter;
    m_collector.listen(kind, CString(name.c_str()), id);
    return id;
}

std::vector<std::uint8_t> CVizProbe::pullBytes(double now)
{
    CWriteSeqBuffer message;
    EXPECT_EQ(errorText(m_collector.writeData(m_clientId, now, message)), "");
    CByteArray bytes;
    message.getContiguous(bytes);
    return {bytes.begin(), bytes.end()};
}

std::map<std::string, CVizProbe::FRecords> CVizProbe::pull(double now)
{
    const std::vector<std::uint8_t> bytes = pullBytes(now);
    CMemoryReaderStatic in(bytes);
    std::map<std::string, FRecords> sources;
    EXPECT_FALSE(in.readDouble(m_streamTime));
    for (std::int32_t count = 1; count > 0;) {
        EXPECT_FALSE(in.readInt32(count));
        CString name;
        if (count > 0) {
            EXPECT_FALSE(in.readString(name));
        }
        for (std::int32_t i = 0; i < count; ++i) {
            std::int32_t size = 0;
            std::int32_t type = 0;
            EXPECT_FALSE(in.readInt32(size));
            EXPECT_FALSE(in.readInt32(type));
            std::uint64_t begin = 0;
            std::uint64_t end = 0;
            EXPECT_FALSE(in.getPosition(begin));
            auto& records = sources[name.toUtf8()];
            records.push_back(CAudioVizData::create(type));
            if (records.back() == nullptr || records.back()->load(in)) {
                ADD_FAILURE() << "a record that can't be read";
                return sources;
            }
            EXPECT_FALSE(in.getPosition(end));
            EXPECT_EQ(end - begin, static_cast<std::uint64_t>(size)) << "the size counts the fields behind the type";
        }
    }
    std::uint64_t left = 0;
    EXPECT_FALSE(in.getPosition(left));
    EXPECT_EQ(left, bytes.size());
    return sources;
}

} // namespace qrb

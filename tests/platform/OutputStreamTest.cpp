#include <KestoDM/platform/OutputStream.h>

#include <gtest/gtest.h>

#include <sstream>
#include <streambuf>
#include <string>

using Kesto::OutputStream;
using Kesto::StdOutputStream;

namespace {

// A stream buffer that takes nothing, as a full device would.
struct FullBuffer : std::streambuf {
    int_type overflow(int_type) override { return traits_type::eof(); }
};

// A stream buffer that counts flushes.
struct CountingBuffer : std::stringbuf {
    int syncs = 0;
    int sync() override {
        ++syncs;
        return 0;
    }
};

// A host's stream with no buffer of its own: the default flush serves it.
struct CollectingOutput : OutputStream {
    bool write(char const* data, std::size_t size) override {
        m_bytes.append(data, size);
        return true;
    }
    std::string m_bytes;
};

} // namespace

TEST(OutputStream, StdAdapterWritesEveryByte) {
    std::ostringstream sink;
    StdOutputStream stream(sink);
    std::string const bytes("a\0b\xff", 4);
    EXPECT_TRUE(stream.write(bytes.data(), bytes.size()));
    EXPECT_TRUE(stream.write("!", 1));
    EXPECT_TRUE(stream.flush());
    EXPECT_EQ(sink.str(), bytes + "!");
}

TEST(OutputStream, StdAdapterWritesNothingForZeroBytes) {
    std::ostringstream sink;
    StdOutputStream stream(sink);
    EXPECT_TRUE(stream.write(nullptr, 0));
    EXPECT_EQ(sink.str(), "");
}

TEST(OutputStream, StdAdapterFailsWhenTheStreamCannotTakeTheBytes) {
    FullBuffer buffer;
    std::ostream sink(&buffer);
    StdOutputStream stream(sink);
    EXPECT_FALSE(stream.write("data", 4));
    EXPECT_FALSE(stream.flush());
}

TEST(OutputStream, StdAdapterFailsOnAFailedStream) {
    std::ostringstream sink;
    sink.setstate(std::ios_base::badbit);
    StdOutputStream stream(sink);
    EXPECT_FALSE(stream.write("data", 4));
    EXPECT_FALSE(stream.flush());
    EXPECT_EQ(sink.str(), "");
}

TEST(OutputStream, StdAdapterFlushReachesTheStreamBuffer) {
    CountingBuffer buffer;
    std::ostream sink(&buffer);
    StdOutputStream stream(sink);
    EXPECT_TRUE(stream.write("x", 1));
    EXPECT_TRUE(stream.flush());
    EXPECT_EQ(buffer.syncs, 1);
    EXPECT_EQ(buffer.str(), "x");
}

TEST(OutputStream, DefaultFlushSucceeds) {
    CollectingOutput collected;
    OutputStream& stream = collected;
    EXPECT_TRUE(stream.write("abc", 3));
    EXPECT_TRUE(stream.flush());
    EXPECT_EQ(collected.m_bytes, "abc");
}

#include <KestoDM/platform/InputStream.h>

#include <gtest/gtest.h>

#include <sstream>
#include <streambuf>
#include <string>

using Kesto::InputStream;
using Kesto::StdInputStream;

namespace {

// A stream buffer whose every read fails, as a broken device would.
struct FailingBuffer : std::streambuf {
    int_type underflow() override { throw std::ios_base::failure("device error"); }
};

// An InputStream of a host: anything that hands over its bytes.
struct FixedInput : InputStream {
    bool readAll(std::string& out) override {
        out = "fixed";
        return true;
    }
};

} // namespace

TEST(InputStream, StdAdapterReadsEveryByte) {
    std::string const bytes("line one\n  line two\0\xff", 21);
    std::istringstream source(bytes);
    StdInputStream stream(source);
    std::string out = "replaced";
    EXPECT_TRUE(stream.readAll(out));
    EXPECT_EQ(out, bytes);
}

TEST(InputStream, StdAdapterReadsTheRestAfterEarlierReads) {
    std::istringstream source("head tail");
    std::string head;
    source >> head;
    StdInputStream stream(source);
    std::string out;
    EXPECT_TRUE(stream.readAll(out));
    EXPECT_EQ(out, " tail");
    EXPECT_TRUE(stream.readAll(out));
    EXPECT_EQ(out, "");
}

TEST(InputStream, StdAdapterDoesNotThrowForAStreamWithExceptionsOn) {
    std::istringstream source("all of it");
    source.exceptions(std::ios_base::failbit | std::ios_base::badbit);
    StdInputStream stream(source);
    std::string out;
    EXPECT_TRUE(stream.readAll(out));
    EXPECT_EQ(out, "all of it");
    EXPECT_EQ(source.exceptions(), std::ios_base::failbit | std::ios_base::badbit);
}

TEST(InputStream, StdAdapterFailsOnAFailedStream) {
    std::istringstream source("text");
    source.setstate(std::ios_base::failbit);
    StdInputStream stream(source);
    std::string out = "old";
    EXPECT_FALSE(stream.readAll(out));
    EXPECT_EQ(out, "");
}

TEST(InputStream, StdAdapterFailsOnAReadError) {
    FailingBuffer buffer;
    std::istream source(&buffer);
    StdInputStream stream(source);
    std::string out;
    EXPECT_FALSE(stream.readAll(out));
}

TEST(InputStream, HostsImplementItThroughTheBase) {
    FixedInput fixed;
    InputStream& stream = fixed;
    std::string out;
    EXPECT_TRUE(stream.readAll(out));
    EXPECT_EQ(out, "fixed");
}

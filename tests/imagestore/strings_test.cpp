#include "imagestore/strings.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "platform/memory.h"

namespace {

std::string PString(const std::string &text) {
    return static_cast<char>(text.size()) + text;
}

ConstStringPtr Bytes(const std::string &text) {
    return reinterpret_cast<ConstStringPtr>(text.data());
}

TEST(Strings, ConvertInPlaceBothWays) {
    for (const size_t length : {0u, 1u, 9u, 254u, 255u, 256u, 300u}) {
        std::string text(length, 'x');
        if (length > 2) {
            text[1] = 'y';
        }
        char buffer[514] = {};
        std::strcpy(buffer, text.c_str());
        ConvertCStringToPString(buffer);
        const std::string kept = text.substr(0, 255);
        EXPECT_EQ(std::string(buffer, kept.size() + 1), PString(kept));
        ConvertPStringToCString(buffer);
        EXPECT_EQ(buffer, kept);
    }
    ConvertCStringToPString(nullptr);
    ConvertPStringToCString(nullptr);
}

TEST(Strings, JoinAndCutToTheRoomThereIs) {
    const struct {
        const char *a, *b;
        int32_t size;
        const char *joined;
    } cases[] = {
        {"abcdef", "ghijkl", 10, "abcdefghi"},
        {"abcdef", "ghijkl", 13, "abcdefghijkl"},
        {"abcdef", "ghijkl", 12, "abcdefghijk"},
        {"abcdef", "g", 4, "abc"},
        {nullptr, "gh", 10, "gh"},
        {"ab", nullptr, 10, "ab"},
        {"ab", "cd", 1, ""},
        {"ab", "cd", 0, "???"},
    };
    for (const auto &c : cases) {
        char out[16] = "???";
        ConcatCStrings(c.a, c.b, out, c.size);
        EXPECT_STREQ(out, c.joined);
    }
    ConcatCStrings("a", "b", nullptr, 10);

    char own[16] = "Disk:";
    ConcatCStrings(own, "Logs", own, sizeof own);
    EXPECT_STREQ(own, "Disk:Logs");
    ConcatCStrings("My ", own, own, sizeof own);
    EXPECT_STREQ(own, "My Disk:Logs");
}

TEST(Strings, PStringsJoinUpTo255) {
    const std::string a = PString(std::string(200, 'a'));
    const std::string b = PString(std::string(100, 'b'));
    Str255 out;
    EXPECT_EQ(ConcatPStrings(Bytes(a), Bytes(b), out), 255);
    EXPECT_EQ(std::string(reinterpret_cast<char *>(out), 256),
              PString(std::string(200, 'a') + std::string(55, 'b')));
    DuplicatePString(Bytes(a), out);
    EXPECT_EQ(ConcatPStrings(out, Bytes(b), out), 255);
    EXPECT_EQ(out[200], 'a');
    EXPECT_EQ(out[201], 'b');
    EXPECT_EQ(ConcatPStrings(nullptr, Bytes(b), out), 100);
    EXPECT_EQ(ConcatPStrings(Bytes(a), nullptr, nullptr), 0);
}

TEST(Strings, DuplicatesEndInsideTheBuffer) {
    const std::string source(600, 'q');
    char buffer[kTextSize + 1];
    std::memset(buffer, '#', sizeof buffer);
    DuplicateCString(source.c_str(), buffer, kTextSize);
    EXPECT_EQ(std::string(buffer), std::string(513, 'q'));
    EXPECT_EQ(buffer[kTextSize], '#');
    DuplicateCString(nullptr, buffer, kTextSize);
    EXPECT_STREQ(buffer, "");
    DuplicateCString("x", nullptr, kTextSize);
}

TEST(Strings, AllocatedTextsAreZeroedAndNeverEmpty) {
    char *text = AllocateCString(kTextSize);
    EXPECT_EQ(std::string(text, kTextSize), std::string(kTextSize, '\0'));
    DisposeCString(text);
    text = AllocateCString(0);
    EXPECT_EQ(GetPtrSize(text), 1);
    DisposeCString(text);
    DisposeCString(nullptr);
}

// Checks what the next block of the same size contains, where freed memory is reused at once.
TEST(Strings, DisposedTextsCannotBeRead) {
    const std::pair<int32_t, std::string> cases[] = {{9, std::string("\0ecret99", 9)},
                                                     {10, std::string("<deleted>\0", 10)},
                                                     {40, std::string("<deleted>\0XXXX", 14)}};
    for (const auto &[size, left] : cases) {
        char *text = NewPtr(size);
        std::memset(text, 'X', static_cast<size_t>(size));
        std::memcpy(text, "secret99", 8);
        text[8] = 0;
        const auto place = reinterpret_cast<uintptr_t>(text);
        DisposeCString(text);
        Ptr next = NewPtr(size);
        const bool reused = reinterpret_cast<uintptr_t>(next) == place;
        const std::string found(next, reused ? left.size() : 0);
        DisposePtr(next);
        if (!reused) {
            GTEST_SKIP() << "released memory is kept away here";
        }
        EXPECT_EQ(found, left);
    }
}

}  // namespace

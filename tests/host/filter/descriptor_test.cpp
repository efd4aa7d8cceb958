// The scripting suites, used the way a filter uses them.
#include "host/filter/descriptor_suites.h"

#include "host/filter/action.h"
#include "platform/memory.h"
#include "tests/host/host_fixture.h"

namespace {

constexpr OSType kUnit = FourCharCode("#Pxl");
constexpr OSType kKeys[] = {FourCharCode("int "), FourCharCode("flt "), FourCharCode("unit"),
                            FourCharCode("bool"), FourCharCode("text"), FourCharCode("enum"),
                            FourCharCode("clss"), FourCharCode("objc"), FourCharCode("alis")};

const ReadDescriptorProcs &Reading() {
    return *HostReadDescriptorProcs();
}

// A descriptor with one value of each kind, written under kKeys in their order.
Handle WriteEachKind() {
    const WriteDescriptorProcs &write = *HostWriteDescriptorProcs();
    const double number = 2.5;
    const Str255 text = "\5hello";
    Handle bytes = NewHandle(3);
    std::memcpy(*bytes, "a\0b", 3);
    PIWriteDescriptor token = write.openWriteDescriptorProc();
    EXPECT_EQ(write.putIntegerProc(token, kKeys[0], -7), noErr);
    EXPECT_EQ(write.putFloatProc(token, kKeys[1], &number), noErr);
    EXPECT_EQ(write.putUnitFloatProc(token, kKeys[2], kUnit, &number), noErr);
    EXPECT_EQ(write.putBooleanProc(token, kKeys[3], true), noErr);
    EXPECT_EQ(write.putStringProc(token, kKeys[4], &text), noErr);
    EXPECT_EQ(write.putEnumeratedProc(token, kKeys[5], kKeys[0], kKeys[1]), noErr);
    EXPECT_EQ(write.putScopedClassProc(token, kKeys[6], kKeys[2]), noErr);
    EXPECT_EQ(write.putScopedObjectProc(token, kKeys[7], kKeys[3], bytes), noErr);
    EXPECT_EQ(write.putAliasProc(token, kKeys[8], bytes), noErr);
    DisposeHandle(bytes);
    EXPECT_NE(write.putSimpleReferenceProc(token, kKeys[0], nullptr), noErr);
    EXPECT_NE(write.putCountProc(token, kKeys[0], 1), noErr);
    Handle descriptor = nullptr;
    EXPECT_EQ(write.closeWriteDescriptorProc(token, &descriptor), noErr);
    return descriptor;
}

// Tries every getter on the current value and returns the letters of those that deliver the right one.
std::string Deliver(PIReadDescriptor token) {
    int32_t integer = 0;
    double number = 0, unitNumber = 0;
    OSType unit = 0, enumerated = 0, classCode = 0, objectType = 0;
    Boolean boolean = 0;
    Str255 string = {};
    Handle text = nullptr, alias = nullptr, object = nullptr;
    const ReadDescriptorProcs &read = Reading();
    std::string letters;
    const auto isBytes = [](Handle handle) {
        return handle != nullptr && GetHandleSize(handle) == 3 && std::memcmp(*handle, "a\0b", 3) == 0;
    };
    const OSErr errors[] = {read.getIntegerProc(token, &integer),
                            read.getFloatProc(token, &number),
                            read.getUnitFloatProc(token, &unit, &unitNumber),
                            read.getBooleanProc(token, &boolean),
                            read.getStringProc(token, &string),
                            read.getTextProc(token, &text),
                            read.getEnumeratedProc(token, &enumerated),
                            read.getClassProc(token, &classCode),
                            read.getObjectProc(token, &objectType, &object),
                            read.getAliasProc(token, &alias)};
    const bool right[] = {integer == -7,
                          number == 2.5,
                          unit == kUnit && unitNumber == 2.5,
                          boolean == 1,
                          std::memcmp(string, "\5hello", 6) == 0,
                          text != nullptr && std::memcmp(*text, "hello", 5) == 0,
                          enumerated == kKeys[1],
                          classCode == kKeys[2],
                          objectType == kKeys[3] && isBytes(object),
                          isBytes(alias)};
    for (size_t i = 0; i < std::size(errors); ++i) {
        letters += errors[i] != noErr ? "" : std::string(1, right[i] ? "ifubstecoa"[i] : '?');
    }
    for (Handle handle : {text, alias, object}) {
        DisposeHandle(handle);
    }
    return letters;
}

class Descriptor : public HostTest {};

TEST_F(Descriptor, EachKindComesBackToItsOwnGetterAlone) {
    const char *const getters[] = {"i", "f", "u", "b", "st", "e", "c", "o", "a"};
    Handle descriptor = WriteEachKind();
    OSType expected[] = {kKeys[4], FourCharCode("none"), kKeys[0], 0};
    PIReadDescriptor token = Reading().openReadDescriptorProc(descriptor, expected);
    ASSERT_NE(token, nullptr);
    EXPECT_EQ(Deliver(token), "") << "before the first key";
    OSType key = 0, type = 0;
    int32_t flags = 0;
    for (size_t i = 0; i < std::size(kKeys); ++i) {
        ASSERT_TRUE(Reading().getKeyProc(token, &key, &type, &flags));
        EXPECT_EQ(key, kKeys[i]);
        EXPECT_EQ(Deliver(token), getters[i]) << i;
    }
    EXPECT_FALSE(Reading().getKeyProc(token, &key, &type, &flags));
    // Keys that were present are zeroed, even after another zero.
    EXPECT_EQ(expected[0], 0U);
    EXPECT_EQ(expected[1], FourCharCode("none"));
    EXPECT_EQ(expected[2], 0U);
    EXPECT_EQ(Reading().closeReadDescriptorProc(token), noErr);
    DisposeHandle(descriptor);
}

TEST_F(Descriptor, PinnedValuesSayThatTheyWerePinned) {
    Handle descriptor = WriteEachKind();
    PIReadDescriptor token = Reading().openReadDescriptorProc(descriptor, nullptr);
    OSType key = 0, type = 0;
    int32_t flags = 0, value = 0;
    Reading().getKeyProc(token, &key, &type, &flags);
    EXPECT_EQ(Reading().getPinnedIntegerProc(token, -10, 10, &value), noErr);
    EXPECT_EQ(value, -7);
    EXPECT_GT(Reading().getPinnedIntegerProc(token, 0, 10, &value), noErr);
    EXPECT_EQ(value, 0);
    EXPECT_GT(Reading().getPinnedIntegerProc(token, -10, -8, &value), noErr);
    EXPECT_EQ(value, -8);
    // A float's range includes both ends.
    const struct { double min, max, pinned; } ranges[] = {{0, 4, 2.5}, {2.5, 2.5, 2.5}, {3, 4, 3}, {1, 2, 2}};
    for (const bool withUnit : {false, true}) {
        Reading().getKeyProc(token, &key, &type, &flags);
        for (const auto &range : ranges) {
            double number = 0;
            OSType unit = 0;
            const OSErr err =
                withUnit ? Reading().getPinnedUnitFloatProc(token, &range.min, &range.max, &unit, &number)
                         : Reading().getPinnedFloatProc(token, &range.min, &range.max, &number);
            EXPECT_EQ(err, range.pinned == 2.5 ? noErr : 2) << range.min;
            EXPECT_EQ(number, range.pinned);
            EXPECT_EQ(unit, withUnit ? kUnit : 0);
        }
    }
    Reading().closeReadDescriptorProc(token);
    DisposeHandle(descriptor);
}

TEST_F(Descriptor, DamagedDescriptorsAreNotOpened) {
    Handle descriptor = WriteEachKind();
    EXPECT_EQ(Reading().openReadDescriptorProc(nullptr, nullptr), nullptr);
    for (int64_t size = GetHandleSize(descriptor) - 1; size >= 0; --size) {
        ASSERT_EQ(SetHandleSize(descriptor, size), noErr);
        ASSERT_EQ(Reading().openReadDescriptorProc(descriptor, nullptr), nullptr) << size;
    }
    DisposeHandle(descriptor);
}

}  // namespace

#include "pattern/reference_pattern.h"
#include "tests/pattern/engine_support.h"
#include "tests/pattern/naive_reference.h"
#include "tests/pattern/pattern_support.h"

#include <gtest/gtest.h>
#include <windows.h>

#include <random>
#include <vector>

namespace zvk::Pelkraft::TestSupport {
namespace {

const HKEY root = HKEY_LOCAL_MACHINE;
constexpr const wchar_t* path = L"SOFTWARE\\ZVK\\ZVK Tintmark\\Others";
constexpr const wchar_t* valueName = L"PatternRandomOld";

// The key, made and removed here.
class RegistryKey
{
public:
    RegistryKey()
    {
        DWORD disposition = 0;
        EXPECT_EQ(ERROR_SUCCESS, RegCreateKeyExW(root, path, 0, nullptr, 0, KEY_ALL_ACCESS, nullptr,
                                                 &key, &disposition));
        EXPECT_EQ(static_cast<DWORD>(REG_CREATED_NEW_KEY), disposition);
    }
    ~RegistryKey()
    {
        RegCloseKey(key);
        RegDeleteKeyW(root, path);
    }
    RegistryKey(const RegistryKey&) = delete;
    RegistryKey& operator=(const RegistryKey&) = delete;

    void Set(DWORD type, const std::vector<unsigned char>& data) const
    {
        EXPECT_EQ(ERROR_SUCCESS, RegSetValueExW(key, valueName, 0, type, data.data(),
                                                static_cast<DWORD>(data.size())));
    }

private:
    HKEY key = nullptr;
};

struct Value
{
    const char* name;
    DWORD type;
    std::vector<unsigned char> data;
    bool isFound;
};

const Value values[] = {
    {"a DWORD of 1", REG_DWORD, {1, 0, 0, 0}, true},
    {"a DWORD of 0", REG_DWORD, {0, 0, 0, 0}, true},
    {"a string", REG_SZ, {'n', 0, 'o', 0, 0, 0}, true},
    {"no bytes", REG_BINARY, {}, true},
    {"256 bytes", REG_BINARY, std::vector<unsigned char>(256, 7), true},
    {"257 bytes", REG_BINARY, std::vector<unsigned char>(257, 7), false},
};

// Loads a pattern that draws for two in-colours, where the newer way of drawing gives other bytes,
// and compares three rows with the definition.
void ExpectDrawnInTheOlderWay()
{
    std::mt19937 random(5);
    NaivePattern description;
    while (description.inColors.size() != 2 || description.outInks > 12)
        description = RandomPattern(random, 2);
    NaiveReference naive(description);
    DotWeavePattern pattern = Load(description.Text(), DotWeavePattern::Reference);
    for (std::uint32_t row = 0; row != 3; ++row) {
        const Bytes source = RandomSteps(2 * 500, row);
        EXPECT_EQ(naive.Apply(source), Apply(pattern, source)) << description.Text();
    }
}

TEST(RegistryValue, HasNoEffectWithoutItsKey)
{
    EXPECT_FALSE(Testonly::ReadRandomOldSetting(false));
    ExpectDrawnInTheOlderWay();
}

TEST(RegistryValue, HasNoEffectWhereTheKeyIsWithoutIt)
{
    const RegistryKey key;
    EXPECT_FALSE(Testonly::ReadRandomOldSetting(false));
    EXPECT_TRUE(Testonly::ReadRandomOldSetting(true));
    ExpectDrawnInTheOlderWay();
}

TEST(RegistryValue, HasNoEffectWhateverItsTypeAndData)
{
    const RegistryKey key;
    for (const Value& value : values) {
        SCOPED_TRACE(value.name);
        key.Set(value.type, value.data);
        ExpectDrawnInTheOlderWay();
    }
}

// The read itself shows only where the default is the opposite.
TEST(RegistryValue, IsReadByItsPresenceAlone)
{
    const RegistryKey key;
    for (const Value& value : values) {
        SCOPED_TRACE(value.name);
        key.Set(value.type, value.data);
        EXPECT_EQ(value.isFound, Testonly::ReadRandomOldSetting(false));
        EXPECT_TRUE(Testonly::ReadRandomOldSetting(true));
    }
}

} // namespace
} // namespace zvk::Pelkraft::TestSupport

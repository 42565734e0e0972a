#include "pattern/reference_pattern.h"

#if defined(_WIN32)
#include <windows.h>
#endif

namespace zvk::Pelkraft::Testonly {

#if defined(_WIN32)

bool ReadRandomOldSetting(bool byDefault)
{
    HKEY key = nullptr;
    if (RegOpenKeyExW(HKEY_LOCAL_MACHINE, L"SOFTWARE\\ZVK\\ZVK Tintmark\\Others", 0, 0x20019,
                      &key) != ERROR_SUCCESS)
        return byDefault;
    BYTE data[256];
    DWORD dataBytes = sizeof(data);
    const LSTATUS status =
        RegQueryValueExW(key, L"PatternRandomOld", nullptr, nullptr, data, &dataBytes);
    RegCloseKey(key);
    return status == ERROR_SUCCESS || byDefault;
}

#else

bool ReadRandomOldSetting(bool byDefault)
{
    return byDefault;
}

#endif

} // namespace zvk::Pelkraft::Testonly

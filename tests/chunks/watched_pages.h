#pragma once

#include <cstddef>

namespace zvk::Pelkraft::TestSupport {

enum class Touch
{
    None,
    Read,
    Write,
};

enum class Side
{
    Before,
    After,
};

// Two pages, of which one is closed until it is touched for the first time. One lives at a time.
class WatchedPages
{
public:
    explicit WatchedPages(Side newClosed);
    ~WatchedPages();
    WatchedPages(const WatchedPages&) = delete;
    WatchedPages& operator=(const WatchedPages&) = delete;

    unsigned char* GetBorder() const { return pages + pageBytes; }

    // The first touch of the closed page while the action runs.
    template <typename Action>
    Touch Watch(Action action)
    {
        Close();
        action();
        Open();
        return touch;
    }

    // Opens the closed page after a fault there, or says that the fault is somebody else's. Called
    // by the system's handler.
    static bool TakeFault(const void* address, bool isWrite);

private:
    unsigned char* ClosedPage() const { return closed == Side::Before ? pages : pages + pageBytes; }
    void Close();
    void Open();

    static inline WatchedPages* active = nullptr;

    const std::size_t pageBytes;
    Side closed;
    unsigned char* pages;
    volatile Touch touch = Touch::None;
};

// Each system has its own: faults go to WatchedPages first, and back to where they went before.
void StartTakingFaults();
void StopTakingFaults();

} // namespace zvk::Pelkraft::TestSupport

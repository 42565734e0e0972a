#pragma once

#include <fcntl.h>
#include <stdlib.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <stdexcept>
#include <string>

namespace zvk::Pelkraft::TestSupport {

// A terminal that nobody looks at: the program writes to one end, the test reads the other.
class PseudoTerminal
{
public:
    explicit PseudoTerminal(unsigned columns) : master(posix_openpt(O_RDWR | O_NOCTTY))
    {
        if (master < 0 || grantpt(master) != 0 || unlockpt(master) != 0)
            throw std::runtime_error("no terminal to be had");
        // Held open, so that what was written stays when the program ends.
        slave = open(ptsname(master), O_RDWR | O_NOCTTY);
        winsize size = {};
        size.ws_row = 25;
        size.ws_col = static_cast<unsigned short>(columns);
        if (ioctl(slave, TIOCSWINSZ, &size) != 0)
            throw std::runtime_error("the terminal takes no size");
    }
    ~PseudoTerminal()
    {
        close(slave);
        close(master);
    }
    PseudoTerminal(const PseudoTerminal&) = delete;
    PseudoTerminal& operator=(const PseudoTerminal&) = delete;

    int Slave() const { return slave; }

    [[nodiscard]] std::string ReadAll() const
    {
        fcntl(master, F_SETFL, O_NONBLOCK);
        std::string text;
        char piece[256];
        for (ssize_t count = 0; (count = read(master, piece, sizeof piece)) > 0;)
            text.append(piece, static_cast<std::size_t>(count));
        return text;
    }

private:
    int master;
    int slave = -1;
};

} // namespace zvk::Pelkraft::TestSupport

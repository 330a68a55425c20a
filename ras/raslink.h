// The links that are up, in this and every other process: what the diallers' pid files tell. A pid
// file holds the number of the process that keeps the line, and in a second line, which pppd
// writes once it has one, the network interface.
#pragma once

#include <string>

#include "ras/rasbook.h"

namespace ras {

struct Link {
  std::uint32_t process = 0;  // also the connection's handle; 0: there is none
  std::string interface;
};

// The name that pppd knows the link of an entry by, fit for a file name: "krx-" and the entry's
// name, with bytes other than letters, digits, "-" and "_" as %XX.
std::string linkName(const Entry& entry);
std::string pidFile(const Entry& entry);

// The link of an entry, whether it is up or still being dialled. A pid file whose process is gone,
// or is another one that got the same number later, is none.
Link findLink(const Entry& entry);
// Can mail be sent over it? The link's interface must be up; a dialler other than pppd need not
// name one.
bool isUp(const Entry& entry, const Link& link);
// Ends the link's process and waits until it is gone, 5 seconds at most: false then.
bool endLink(const Entry& entry, const Link& link);

}  // namespace ras

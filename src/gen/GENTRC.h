// Tracing: nested trace blocks that print their entry and exit, indented by depth, for code that is
// built with tracing; and trace entries of the library's own code, which are written only when
// tracing is already on, so that no library call ever prompts, opens a display or throws.
//
//   void work() {
//     GEN_TraceBlock trace("work", 2);
//     trace.print("%u items", count);
//   }
//
// Threads: the state is the process's and unguarded; tracing is meant for a single thread.
#pragma once

namespace gen {

// Prints through the debug output when the trace level is at least `level`; else does nothing.
void traceIfOn(int level, const char* format, ...) __attribute__((format(printf, 2, 3)));

// The trace level; -1 until the first trace block.
int traceLevel() noexcept;

}  // namespace gen

// The first block of the process initialises tracing: it opens the display (GENDisplayOpen) and
// reads the settings TraceLevel, TraceLimit and TimeStamp, prompting for what the environment does
// not give. A block of a level (at least 1) above the trace level prints nothing. Entering, leaving
// and printing check the watch list, which can assert.
class GEN_TraceBlock {
 public:
  // `name` must stay valid as long as the block.
  GEN_TraceBlock(const char* name, int level);
  // The trigger, at most the trace limit, raises the trace level for the time of this block.
  GEN_TraceBlock(const char* name, int level, int trigger);
  GEN_TraceBlock(const GEN_TraceBlock&) = delete;
  GEN_TraceBlock& operator=(const GEN_TraceBlock&) = delete;
  // Prints the last-status record. The watch list is not checked while an exception passes.
  ~GEN_TraceBlock() noexcept(false);

  void print(const char* format, ...) __attribute__((format(printf, 2, 3)));
  void dump(const char* label, const void* address, unsigned int length);

 private:
  void enter(const char* suffix);
  void leave();
  void restore() const noexcept;
  bool isOn() const noexcept;

  const char* m_name;
  int m_level;
  int m_savedLevel;
  int m_exceptions;        // in flight at entry
  bool m_printed = false;  // the entry counts in the depth
};

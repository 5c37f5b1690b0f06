// The part of TOSSpecific that is about the keyboard on standard input.

#include <sys/select.h>
#include <termios.h>
#include <unistd.h>

#include "os/TDescriptor.h"
#include "zelcore/TOSSpecific.h"

namespace {

// While this lives, key presses on standard input can be seen one by one, before the line end. It
// does nothing where standard input is no terminal.
class TSingleKeys {
 public:
  TSingleKeys() : fIsTerminal(tcgetattr(STDIN_FILENO, &fSaved) == 0) {
    if (!fIsTerminal) return;
    termios single = fSaved;
    single.c_lflag &= ~static_cast<tcflag_t>(ICANON);
    single.c_cc[VMIN] = 1;
    Apply(single);
  }
  ~TSingleKeys() {
    if (fIsTerminal) Apply(fSaved);
  }
  TSingleKeys(const TSingleKeys&) = delete;
  TSingleKeys& operator=(const TSingleKeys&) = delete;

 private:
  // At once and without dropping what has been typed.
  static void Apply(const termios& settings) { tcsetattr(STDIN_FILENO, TCSANOW, &settings); }

  termios fSaved;
  bool fIsTerminal;
};

}  // namespace

bool TOSSpecific::IsKeyWaiting() {
  const TSingleKeys keys;
  const int ready = Uninterrupted([] {
    fd_set input;
    FD_ZERO(&input);
    FD_SET(STDIN_FILENO, &input);
    timeval now{0, 0};
    return select(STDIN_FILENO + 1, &input, nullptr, nullptr, &now);
  });
  return ready > 0;
}

// Past the C library's buffer, which would hide further keys from IsKeyWaiting().
int TOSSpecific::GetKeyboardChar() {
  const TSingleKeys keys;
  unsigned char key;
  return Uninterrupted([&] { return read(STDIN_FILENO, &key, 1); }) == 1 ? key : -1;
}

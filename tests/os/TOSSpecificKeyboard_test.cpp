#include <fcntl.h>
#include <gtest/gtest.h>
#include <pthread.h>
#include <signal.h>
#include <stdlib.h>
#include <termios.h>
#include <unistd.h>

#include <chrono>
#include <memory>
#include <string>
#include <thread>

#include "zelcore/TOSSpecific.h"

namespace {

// Another standard input for as long as this lives.
class StandardInput {
 public:
  explicit StandardInput(int fd) : fFormer(dup(STDIN_FILENO)) { dup2(fd, STDIN_FILENO); }
  ~StandardInput() {
    dup2(fFormer, STDIN_FILENO);
    close(fFormer);
  }

 private:
  int fFormer;
};

// A terminal as standard input; Type() is its keyboard.
class Terminal {
 public:
  Terminal() : fMaster(posix_openpt(O_RDWR | O_NOCTTY)) {
    grantpt(fMaster);
    unlockpt(fMaster);
    fTerminal = open(ptsname(fMaster), O_RDWR | O_NOCTTY);
    fInput = std::make_unique<StandardInput>(fTerminal);
  }
  ~Terminal() {
    fInput.reset();
    close(fTerminal);
    close(fMaster);
  }

  void Type(const std::string& keys) const {
    EXPECT_EQ(static_cast<ssize_t>(keys.size()), write(fMaster, keys.data(), keys.size()));
  }
  termios Settings() const {
    termios settings{};
    EXPECT_EQ(0, tcgetattr(fTerminal, &settings));
    return settings;
  }
  void Set(const termios& settings) const {
    EXPECT_EQ(0, tcsetattr(fTerminal, TCSANOW, &settings));
  }
  bool IsLineBuffered() const { return (Settings().c_lflag & ICANON) != 0; }

 private:
  int fMaster;
  int fTerminal;
  std::unique_ptr<StandardInput> fInput;
};

// The terminal hands keys on in its own time.
template <class TCondition>
bool Eventually(TCondition condition) {
  for (int i = 0; i < 5000; ++i) {
    if (condition()) return true;
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  }
  return false;
}

void ExpectEqual(const termios& a, const termios& b) {
  EXPECT_EQ(a.c_iflag, b.c_iflag);
  EXPECT_EQ(a.c_oflag, b.c_oflag);
  EXPECT_EQ(a.c_cflag, b.c_cflag);
  EXPECT_EQ(a.c_lflag, b.c_lflag);
  EXPECT_EQ(std::string(a.c_cc, a.c_cc + NCCS), std::string(b.c_cc, b.c_cc + NCCS));
}

}  // namespace

TEST(Keyboard, ShowsAKeyBeforeTheLineEnd) {
  const Terminal terminal;
  EXPECT_FALSE(TOSSpecific::IsKeyWaiting());
  terminal.Type("x");
  EXPECT_TRUE(Eventually(TOSSpecific::IsKeyWaiting));
  EXPECT_TRUE(TOSSpecific::IsKeyWaiting());  // looking does not take it
  EXPECT_EQ('x', TOSSpecific::GetKeyboardChar());
  EXPECT_FALSE(TOSSpecific::IsKeyWaiting());
}

TEST(Keyboard, TakesOneKeyAtATime) {
  const Terminal terminal;
  terminal.Type("ab\xff");
  EXPECT_EQ('a', TOSSpecific::GetKeyboardChar());
  EXPECT_TRUE(Eventually(TOSSpecific::IsKeyWaiting));
  EXPECT_EQ('b', TOSSpecific::GetKeyboardChar());
  EXPECT_EQ(255, TOSSpecific::GetKeyboardChar());
  EXPECT_FALSE(TOSSpecific::IsKeyWaiting());
}

TEST(Keyboard, RestoresTheTerminal) {
  const Terminal terminal;
  termios settings = terminal.Settings();
  settings.c_cc[VMIN] = 7;  // would hold single keys back
  settings.c_cc[VTIME] = 9;
  terminal.Set(settings);
  terminal.Type("xy");
  EXPECT_TRUE(Eventually(TOSSpecific::IsKeyWaiting));
  ExpectEqual(settings, terminal.Settings());
  EXPECT_EQ('x', TOSSpecific::GetKeyboardChar());
  ExpectEqual(settings, terminal.Settings());

  settings.c_lflag &= ~static_cast<tcflag_t>(ICANON | ECHO);
  terminal.Set(settings);
  EXPECT_TRUE(TOSSpecific::IsKeyWaiting());
  EXPECT_EQ('y', TOSSpecific::GetKeyboardChar());
  ExpectEqual(settings, terminal.Settings());
}

TEST(Keyboard, WaitsForAKeyThroughSignals) {
  const Terminal terminal;
  struct sigaction interrupt {};
  interrupt.sa_handler = [](int) {};
  sigaction(SIGUSR1, &interrupt, nullptr);
  const pthread_t reader = pthread_self();
  EXPECT_TRUE(terminal.IsLineBuffered());
  std::thread typist([&] {
    EXPECT_TRUE(Eventually([&] { return !terminal.IsLineBuffered(); }));
    for (int i = 0; i < 20; ++i) {
      pthread_kill(reader, SIGUSR1);
      std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    terminal.Type("k");
  });
  EXPECT_EQ('k', TOSSpecific::GetKeyboardChar());
  typist.join();
  EXPECT_TRUE(terminal.IsLineBuffered());
}

TEST(Keyboard, MayBeAPipe) {
  int ends[2];
  ASSERT_EQ(0, pipe(ends));
  const StandardInput input(ends[0]);
  EXPECT_FALSE(TOSSpecific::IsKeyWaiting());
  ASSERT_EQ(2, write(ends[1], "pq", 2));
  EXPECT_TRUE(TOSSpecific::IsKeyWaiting());
  EXPECT_EQ('p', TOSSpecific::GetKeyboardChar());
  EXPECT_EQ('q', TOSSpecific::GetKeyboardChar());
  EXPECT_FALSE(TOSSpecific::IsKeyWaiting());

  close(ends[1]);
  EXPECT_TRUE(TOSSpecific::IsKeyWaiting());  // the end is there to be read
  EXPECT_EQ(-1, TOSSpecific::GetKeyboardChar());
  close(ends[0]);
}

TEST(Keyboard, MayBeMissing) {
  const StandardInput input(STDIN_FILENO);
  close(STDIN_FILENO);
  EXPECT_FALSE(TOSSpecific::IsKeyWaiting());
  EXPECT_EQ(-1, TOSSpecific::GetKeyboardChar());
}

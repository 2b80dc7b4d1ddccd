#pragma once

#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdint>
#include <exception>
#include <stdexcept>

namespace sg::jet {

// Another process that runs a function and talks to this one in numbers.
class ChildProcess {
  public:
    // The other end, inside the child.
    class Parent {
      public:
        Parent(int in, int out) : in_(in), out_(out) {}
        void tell(int64_t number) const {
            if (::write(out_, &number, sizeof number) != sizeof number) ::_exit(3);
        }
        // Ends the child when the parent has gone.
        int64_t hear() const {
            int64_t number = 0;
            if (::read(in_, &number, sizeof number) != sizeof number) ::_exit(0);
            return number;
        }

      private:
        int in_, out_;
    };

    template <class F>
    explicit ChildProcess(F function) {
        int down[2], up[2];
        if (::pipe(down) != 0 || ::pipe(up) != 0) throw std::runtime_error("pipe");
        id_ = ::fork();
        if (id_ < 0) throw std::runtime_error("fork");
        if (id_ == 0) {
            ::close(down[1]);
            ::close(up[0]);
            try {
                function(Parent(down[0], up[1]));
            } catch (const std::exception&) {
                ::_exit(2);
            }
            ::_exit(0);
        }
        ::close(down[0]);
        ::close(up[1]);
        out_ = down[1];
        in_ = up[0];
    }
    ~ChildProcess() {
        ::close(out_);
        kill();
        ::close(in_);
    }
    ChildProcess(const ChildProcess&) = delete;
    ChildProcess& operator=(const ChildProcess&) = delete;

    void tell(int64_t number) const {
        if (::write(out_, &number, sizeof number) != sizeof number) {
            throw std::runtime_error("the child has gone");
        }
    }
    // Waits for a number; `none` when the child has ended.
    static constexpr int64_t none = INT64_MIN;
    int64_t hear() const {
        int64_t number = 0;
        return ::read(in_, &number, sizeof number) == sizeof number ? number : none;
    }
    int64_t ask(int64_t number) const {
        tell(number);
        return hear();
    }
    void kill() {
        if (id_ == 0) return;
        ::kill(id_, SIGKILL);
        finish();
    }
    // Waits for the child's end; answers its exit status, -1 when it was killed.
    int finish() {
        int status = 0;
        ::waitpid(id_, &status, 0);
        id_ = 0;
        return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }

  private:
    pid_t id_ = 0;
    int in_ = -1, out_ = -1;
};

}  // namespace sg::jet

// An environment variable for the time of a test, on a host that reads it again.
#pragma once

#include <cstdlib>
#include <ctime>
#include <optional>
#include <string>

namespace txs {

class EnvironmentVariable {
 public:
  EnvironmentVariable(const char* name, const char* value) : name_(name) {
    if (const char* const old = std::getenv(name)) old_ = old;
    setenv(name, value, /*replace=*/1);
    tzset();
  }
  ~EnvironmentVariable() {
    if (old_) {
      setenv(name_, old_->c_str(), /*replace=*/1);
    } else {
      unsetenv(name_);
    }
    tzset();
  }
  EnvironmentVariable(const EnvironmentVariable&) = delete;
  EnvironmentVariable& operator=(const EnvironmentVariable&) = delete;

 private:
  const char* name_;
  std::optional<std::string> old_;
};

}  // namespace txs

#pragma once

#include <string>

namespace tremor::testing {

// A fresh self-signed certificate for the name "localhost" and its key, as PEM files in `folder`.
// It is its own authority: trusted by whoever takes certificateFile() as one.
class TestCertificate {
  public:
    explicit TestCertificate(const std::string& folder);

    const std::string& certificateFile() const { return certificateFile_; }
    const std::string& keyFile() const { return keyFile_; }

  private:
    std::string certificateFile_;
    std::string keyFile_;
};

} // namespace tremor::testing

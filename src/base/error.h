#pragma once

#include <QString>
#include <exception>
#include <utility>

namespace brisklet {

/// A failure that the user is told of. `text()` is the sentence that the user reads first, with any technical
/// detail after it. It names the file it is about, if it is about one.
class Error : public std::exception {
 public:
  explicit Error(QString text) : text_(std::move(text)), utf8_(text_.toUtf8()) {}

  [[nodiscard]] const QString& text() const { return text_; }
  [[nodiscard]] const char* what() const noexcept override { return utf8_.constData(); }

 private:
  QString text_;
  QByteArray utf8_;
};

}  // namespace brisklet

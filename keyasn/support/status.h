/// @file
/// XRUVMsg and XRUVStatus: the exception types of the library.
#ifndef KEYASN_SUPPORT_STATUS_H_
#define KEYASN_SUPPORT_STATUS_H_

#include <exception>
#include <memory>
#include <string>

#include "keyasn/support/export.h"

/// XRUVMsg is an exception carrying one readable message line. Copies share the
/// message, so copying never allocates (and never throws).
class KEYASN_API XRUVMsg : public std::exception {
 public:
  /// XRUVMsg(message) keeps a copy of `message` (empty when null).
  explicit XRUVMsg(const char* message);
  /// Copies `other`, sharing its message.
  XRUVMsg(const XRUVMsg& other) noexcept;
  /// Replaces the contents by a copy of `other`; returns this object.
  XRUVMsg& operator=(const XRUVMsg& other) noexcept;
  ~XRUVMsg() override;
  /// what returns the message line.
  const char* what() const noexcept override;

 protected:
  XRUVMsg() noexcept = default;

  /// The message line; set by the constructors of derived exceptions.
  std::shared_ptr<const std::string> m_message;
};

/// XRUVStatus(code, where, flag) is the failure of a library operation: `code` is
/// one of the library's numeric codes (see keyasn/codec/error_codes.h) or an errno
/// value, `where` the place text, kept byte for byte (some place texts carry
/// Windows-1251 octets). The library always passes false as `flag`.
class KEYASN_API XRUVStatus : public XRUVMsg {
 public:
  /// Keeps the three values; what() reads "keyasn status CODE at WHERE".
  XRUVStatus(int code, const char* where, bool flag);
  /// Copies `other`, sharing its texts.
  XRUVStatus(const XRUVStatus& other) noexcept;
  /// Replaces the contents by a copy of `other`; returns this object.
  XRUVStatus& operator=(const XRUVStatus& other) noexcept;
  ~XRUVStatus() override;

  /// Status returns the numeric code.
  int Status() const noexcept;
  /// Where returns the place text exactly as given.
  const char* Where() const noexcept;
  /// Flag returns the third constructor argument.
  bool Flag() const noexcept { return m_flag; }

 private:
  int m_status;
  bool m_flag;
  std::shared_ptr<const std::string> m_where;
};

#endif  // KEYASN_SUPPORT_STATUS_H_

#include "keyasn/support/status.h"

XRUVMsg::XRUVMsg(const char* message)
    : m_message(std::make_shared<const std::string>(message ? message : "")) {}

XRUVMsg::XRUVMsg(const XRUVMsg& other) noexcept = default;

XRUVMsg& XRUVMsg::operator=(const XRUVMsg& other) noexcept = default;

XRUVMsg::~XRUVMsg() = default;

const char* XRUVMsg::what() const noexcept {
  return m_message ? m_message->c_str() : "XRUVMsg";
}

XRUVStatus::XRUVStatus(int code, const char* where, bool flag)
    : m_status(code),
      m_flag(flag),
      m_where(std::make_shared<const std::string>(where ? where : "")) {
  m_message = std::make_shared<const std::string>("keyasn status " + std::to_string(code) +
                                                 " at " + *m_where);
}

XRUVStatus::XRUVStatus(const XRUVStatus& other) noexcept = default;

XRUVStatus& XRUVStatus::operator=(const XRUVStatus& other) noexcept = default;

XRUVStatus::~XRUVStatus() = default;

int XRUVStatus::Status() const noexcept { return m_status; }

const char* XRUVStatus::Where() const noexcept { return m_where ? m_where->c_str() : ""; }

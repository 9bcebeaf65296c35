#include "keyasn/support/status.h"

#include <utility>

XRUVMsg::XRUVMsg(const char* message)
    : m_message(std::make_shared<const std::string>(message ? message : "")) {}

XRUVMsg::~XRUVMsg() = default;

const char* XRUVMsg::what() const noexcept {
  return m_message ? m_message->c_str() : "XRUVMsg";
}

void XRUVMsg::SetMessage(std::string message) {
  m_message = std::make_shared<const std::string>(std::move(message));
}

XRUVStatus::XRUVStatus(int code, const char* where, bool flag)
    : m_status(code),
      m_flag(flag),
      m_where(std::make_shared<const std::string>(where ? where : "")) {
  SetMessage("keyasn status " + std::to_string(code) + " at " + *m_where);
}

XRUVStatus::~XRUVStatus() = default;

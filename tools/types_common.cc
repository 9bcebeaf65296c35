#include "types_common.h"

#include <cstdio>

#include "der_walk.h"
#include "keyasn/codec/oid.h"
#include "values.h"

namespace keyasn {
namespace tool {

namespace {

// Windows-1251 octets 0x80..0xFF as Unicode code points.
const unsigned short kCp1251[128] = {
    0x0402, 0x0403, 0x201A, 0x0453, 0x201E, 0x2026, 0x2020, 0x2021, 0x20AC, 0x2030, 0x0409,
    0x2039, 0x040A, 0x040C, 0x040B, 0x040F, 0x0452, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0xFFFD, 0x2122, 0x0459, 0x203A, 0x045A, 0x045C, 0x045B, 0x045F, 0x00A0,
    0x040E, 0x045E, 0x0408, 0x00A4, 0x0490, 0x00A6, 0x00A7, 0x0401, 0x00A9, 0x0404, 0x00AB,
    0x00AC, 0x00AD, 0x00AE, 0x0407, 0x00B0, 0x00B1, 0x0406, 0x0456, 0x0491, 0x00B5, 0x00B6,
    0x00B7, 0x0451, 0x2116, 0x0454, 0x00BB, 0x0458, 0x0405, 0x0455, 0x0457};

std::string FromCp1251(const char* text) {
  std::string out;
  for (const unsigned char* p = reinterpret_cast<const unsigned char*>(text); *p != 0; ++p) {
    unsigned int cp = *p;
    if (cp >= 0xC0) {
      cp = 0x0410 + (cp - 0xC0);
    } else if (cp >= 0x80) {
      cp = kCp1251[cp - 0x80];
    }
    if (cp < 0x80) {
      out += static_cast<char>(cp);
    } else if (cp < 0x800) {
      out += static_cast<char>(0xC0 | (cp >> 6));
      out += static_cast<char>(0x80 | (cp & 0x3F));
    } else {
      out += static_cast<char>(0xE0 | (cp >> 12));
      out += static_cast<char>(0x80 | ((cp >> 6) & 0x3F));
      out += static_cast<char>(0x80 | (cp & 0x3F));
    }
  }
  return out;
}

}  // namespace

std::string StatusText(const XRUVStatus& status) {
  return FromCp1251(status.Where()) + ": code " + std::to_string(status.Status()) + " (" +
         CodeMeaning(status.Status()) + ")";
}

void CheckCode(int code, const std::string& what, const std::string& place) {
  if (code != 0) {
    throw ToolError(kExitMalformed, what + ": " + place + ": code " + std::to_string(code) +
                                        " (" + CodeMeaning(code) + ")");
  }
}

std::string FileTimeText(const CRUVFileTime& time) {
  SYSTEMTIME st{};
  if (!FileTimeToSystemTime(&time.GetFileTime(), &st)) return std::string();
  char buffer[64];
  if (st.wMilliseconds != 0) {
    std::snprintf(buffer, sizeof buffer, "%04u-%02u-%02uT%02u:%02u:%02u.%03uZ", st.wYear, st.wMonth,
                  st.wDay, st.wHour, st.wMinute, st.wSecond, st.wMilliseconds);
  } else {
    std::snprintf(buffer, sizeof buffer, "%04u-%02u-%02uT%02u:%02u:%02uZ", st.wYear, st.wMonth,
                  st.wDay, st.wHour, st.wMinute, st.wSecond);
  }
  return buffer;
}

bool ParseFileTime(const std::string& iso, CRUVFileTime* time) {
  unsigned int y, mo, d, h, mi, s, ms = 0;
  char tail[8] = {0};
  int n = 0;
  if (iso.size() == 20) {
    if (std::sscanf(iso.c_str(), "%4u-%2u-%2uT%2u:%2u:%2u%1[Z]%n", &y, &mo, &d, &h, &mi, &s, tail, &n) != 7) {
      return false;
    }
  } else if (iso.size() == 24) {
    if (std::sscanf(iso.c_str(), "%4u-%2u-%2uT%2u:%2u:%2u.%3u%1[Z]%n", &y, &mo, &d, &h, &mi, &s, &ms,
                    tail, &n) != 8) {
      return false;
    }
  } else {
    return false;
  }
  if (static_cast<std::size_t>(n) != iso.size()) return false;
  // The text must be the canonical form FileTimeText writes.
  SYSTEMTIME st{};
  st.wYear = static_cast<uint16_t>(y);
  st.wMonth = static_cast<uint16_t>(mo);
  st.wDay = static_cast<uint16_t>(d);
  st.wHour = static_cast<uint16_t>(h);
  st.wMinute = static_cast<uint16_t>(mi);
  st.wSecond = static_cast<uint16_t>(s);
  st.wMilliseconds = static_cast<uint16_t>(ms);
  FILETIME ft{};
  if (!SystemTimeToFileTime(&st, &ft)) return false;
  *time = CRUVFileTime(ft);
  return FileTimeText(*time) == iso;
}

void ShowTime(View* view, const std::string& name, const CRUVFileTime& time) {
  if (time.GetTicks() == 0) {
    view->Null(name, "(none)");
    return;
  }
  const std::string text = FileTimeText(time);
  if (text.empty()) {
    view->Raw(name, std::to_string(time.GetTicks()), "file time " + std::to_string(time.GetTicks()) + " (beyond the calendar)");
  } else {
    view->Time(name, text);
  }
}

CRUVFileTime ReadTime(const JsonIn& in, const std::string& name) {
  if (in.IsNull(name)) {
    if (!in.Has(name)) in.Fail(name, "missing");
    return CRUVFileTime();
  }
  const std::string text = in.Str(name);
  CRUVFileTime time;
  if (ParseFileTime(text, &time)) return time;
  // A count of 100-nanosecond intervals, for times beyond the calendar.
  if (!text.empty() && text.find_first_not_of("0123456789") == std::string::npos && text.size() <= 20) {
    const unsigned long long ticks = std::stoull(text);
    return CRUVFileTime(static_cast<unsigned long>(ticks));
  }
  in.Fail(name, "expected a time such as \"2024-01-01T00:00:00Z\" (UTC, optional .mmm) or null");
}

void ShowOidContents(View* view, const std::string& name, const IdentObj& contents) {
  if (contents.Count() == 0) {
    view->Oid(name, "");
    return;
  }
  const std::string dotted = keyasn::OidText(contents);
  if (!dotted.empty()) {
    view->Oid(name, dotted);
    return;
  }
  Json hex = Json::object();
  hex["hex"] = ToHex(contents.GetData(), contents.Count());
  view->Raw(name, hex, ToHex(contents.GetData(), contents.Count()) + " (not a valid object identifier)");
}

void ShowOptionalOctets(View* view, const std::string& name, const IdentObj& octets) {
  if (octets.Count() == 0) {
    view->Null(name);
  } else {
    view->Octets(name, octets.GetData(), octets.Count());
  }
}

IdentObj ReadOptionalOctets(const JsonIn& in, const std::string& name) {
  if (in.IsNull(name)) {
    if (!in.Has(name)) in.Fail(name, "missing");
    return IdentObj();
  }
  return ToIdent(in.Hex(name));
}

void ShowOptionalElement(View* view, const std::string& name, const IdentObj& element) {
  if (element.Count() == 0) {
    view->Null(name);
  } else {
    view->Element(name, element.GetData(), element.Count());
  }
}

void ShowAlgorithmId(View* view, const ASNAlgorithmIdentifier& id) {
  ShowOidContents(view, "ObjID", id.GetObjID());
  ShowOptionalElement(view, "AddInfo", id.GetAddInfo());
}

ASNAlgorithmIdentifier ReadAlgorithmId(const JsonIn& in) {
  ASNAlgorithmIdentifier id;
  id.SetObjID(ToIdent(in.OidContents("ObjID")));
  id.SetAddInfo(ReadOptionalOctets(in, "AddInfo"));
  return id;
}

void ShowIdData(View* view, const CASNTIdData& id) {
  ASNAlgorithmIdentifier named;
  static_cast<CASNTIdData&>(named) = id;
  ShowAlgorithmId(view, named);
}

CASNTIdData ReadIdData(const JsonIn& in) {
  const ASNAlgorithmIdentifier named = ReadAlgorithmId(in);
  return CASNTIdData(named);
}

void ShowKeyOctets(View* view, const std::string& name, const IdentObj& octets) {
  if (octets.Count() > 0 && IsCompleteEncoding(octets.GetData(), octets.Count())) {
    view->Element(name, octets.GetData(), octets.Count());
  } else {
    view->Octets(name, octets.GetData(), octets.Count());
  }
}

void ShowElementList(View* view, const std::string& name, const std::list<IdentObj>& items) {
  View& list = view->Array(name);
  for (const IdentObj& item : items) list.Element("", item.GetData(), item.Count());
}

std::list<IdentObj> ReadElementList(const JsonIn& in, const std::string& name) {
  std::list<IdentObj> items;
  for (const JsonIn& item : in.Items(name)) {
    Bytes bytes;
    if (!item.value().is_string() || !ParseHex(item.value().get<std::string>(), &bytes)) {
      item.Fail("", "expected a string of hex digit pairs");
    }
    items.push_back(ToIdent(bytes));
  }
  return items;
}

}  // namespace tool
}  // namespace keyasn

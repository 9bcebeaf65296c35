#include "keyasn/keys/id_data.h"

CASNTIdData::CASNTIdData() = default;

CASNTIdData::CASNTIdData(const CASNTIdData& other) = default;

CASNTIdData::~CASNTIdData() = default;

CASNTIdData& CASNTIdData::operator=(const CASNTIdData& other) {
  if (this != &other) {
    objId = other.objId;
    addInfo = other.addInfo;
  }
  return *this;
}

void CASNTIdData::Clear() {
  objId.Empty();
  addInfo.Empty();
}

bool CASNTIdData::operator==(const CASNTIdData& other) const {
  return objId == other.objId && addInfo == other.addInfo;
}

bool CASNTIdData::operator!=(const CASNTIdData& other) const {
  if (objId != other.objId) return true;
  return addInfo != other.addInfo;
}

bool CASNTIdData::operator<(const CASNTIdData& other) const {
  return objId < other.objId && addInfo < other.addInfo;
}

bool CASNTIdData::operator>(const CASNTIdData& other) const {
  return !(objId < other.objId) || !(addInfo < other.addInfo);
}

ASNAlgorithmIdentifier::ASNAlgorithmIdentifier() = default;

ASNAlgorithmIdentifier::ASNAlgorithmIdentifier(const ASNAlgorithmIdentifier& other) = default;

ASNAlgorithmIdentifier::~ASNAlgorithmIdentifier() = default;

ASNAlgorithmIdentifier& ASNAlgorithmIdentifier::operator=(
    const ASNAlgorithmIdentifier& other) {
  CASNTIdData::operator=(other);
  return *this;
}

IdentObj ASNAlgorithmIdentifier::GetObjID() const { return objId; }

void ASNAlgorithmIdentifier::SetObjID(const IdentObj& value) { objId = value; }

IdentObj ASNAlgorithmIdentifier::GetAddInfo() const { return addInfo; }

void ASNAlgorithmIdentifier::SetAddInfo(const IdentObj& value) { addInfo = value; }

#!/usr/bin/env bash
# The shared library exports exactly the public names, and carries its SONAME.
set -euo pipefail
lib=$1
soname=$(objdump -p "$lib" | awk '/SONAME/ {print $2}')
[ "$soname" = "libkeyasn.so.1" ] || { echo "SONAME is '$soname'"; exit 1; }
public='IdentObj|CRUVCryptBitBlob|CRUVFileTime|CRUVString|CRUVFile|XRUVMsg|XRUVStatus'
public+='|FileTimeToSystemTime|SystemTimeToFileTime|ASNTGetAsnInfo|BuildTag|GetTagFromEncoded'
public+='|ModifyTagAtEncoded|ASNTLowEncodeData|ASNTLowDecodeData|IsDigits|FractionToTime'
public+='|MemCpyDwordToByte|ASNTGetSequence|ASNTPutSequence|CASNTBaseRecord|CASNTUnit'
public+='|ITaggedType|Implicit|Explicit|DerHelper|CASNTIdData|ASNAlgorithmIdentifier|CASNValid'
public+='|ASNKeyInfo|ASNContainerInfo|CASNEncryptedKey|CASNPublicKeyInfo|CASNExportKeyInfo'
public+='|CASNExchangeKeyData|CASNProxyKeyExchangeData|CASNKeyRecord|ASNCryptokiElemInfo'
public+='|ASNCryptokiContInfo|CASNEphemeralKeyInfo|CASNAlgAddInfo|CASNEncrParams'
pattern="^((non-virtual thunk to |virtual thunk to |vtable for |typeinfo for |typeinfo name for )?($public)(::|\\(| |$)|operator(==|!=|<)\\(IdentObj const&, IdentObj const&\\)$|keyasn::|KEYASN_1$)"
syms=$(nm -D --defined-only -C "$lib" | cut -d' ' -f3- | sed 's/@@\?KEYASN_1$//')
bad=$(printf '%s\n' "$syms" | grep -v -E "$pattern" || true)
if [ -n "$bad" ]; then
  echo "unexpected exported symbols:"; printf '%s\n' "$bad"; exit 1
fi
for need in 'keyasn::Version()' 'keyasn::ErrorText(int)' 'IdentObj::GetSize() const' 'XRUVStatus::XRUVStatus(int, char const*, bool)' \
            'FileTimeToSystemTime(FILETIME const*, SYSTEMTIME*)' \
            'operator==(IdentObj const&, IdentObj const&)' \
            'operator!=(IdentObj const&, IdentObj const&)' \
            'operator<(IdentObj const&, IdentObj const&)'; do
  printf '%s\n' "$syms" | grep -q -F "$need" || { echo "missing export: $need"; exit 1; }
done
echo "exports ok: $(printf '%s\n' "$syms" | wc -l) symbols"

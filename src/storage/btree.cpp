#include "storage/btree.h"

#include "storage/result_codes.h"

namespace korvan::storage {

template <class Format>
int BTree<Format>::OpenHeader() {
  if (pins_.size() == 0) {
    int slot = 0;
    if (const int rc = pins_.Read(0, &slot); rc != kOk) return rc;
  }
  return header().Validate(&shape_);
}

template <class Format>
int BTree<Format>::PinNode(uint32_t node, int* slot) {
  if (!header().IsNodeNumber(node)) return kKeyFileCorrupt;
  if (const int rc = pins_.Read(node, slot); rc != kOk) return rc;
  const int count = NodeAt(*slot).count();
  if (count < 1 || count > shape_.max_entries) {
    pins_.ReleaseLast();
    return kKeyFileCorrupt;
  }
  return kOk;
}

template <class Format>
int BTree<Format>::KeyLength(int* key_length) {
  if (const int rc = OpenHeader(); rc != kOk) return rc;
  *key_length = shape_.key_length;
  return pins_.ReleaseAll();
}

template int BTree<KeyFileV3>::OpenHeader();
template int BTree<KeyFileV2>::OpenHeader();
template int BTree<KeyFileV3>::PinNode(uint32_t node, int* slot);
template int BTree<KeyFileV2>::PinNode(uint32_t node, int* slot);
template int BTree<KeyFileV3>::KeyLength(int* key_length);
template int BTree<KeyFileV2>::KeyLength(int* key_length);

}  // namespace korvan::storage

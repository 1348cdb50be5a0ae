#include "api/handles/metadata_handles.h"

MetaDataHandles &MetaDataHandles::instance () {
  static MetaDataHandles &handles = *new MetaDataHandles;
  return handles;
}

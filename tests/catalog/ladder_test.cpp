#include "catalog/store.h"

INSTANTIATE_TYPED_TEST_SUITE_P(C, Ladder, CatalogStore);

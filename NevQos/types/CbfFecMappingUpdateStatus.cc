#include "NevQos/types/CbfFecMappingUpdateStatus.h"

namespace NevHelper {

namespace {

constexpr ValueText::Member cbfFecMappingUpdateStatusNames[] = {
   { cbfMapUpdateSuccess, "cbfMapUpdateSuccess" },
   { cbfMapUpdateNotReady, "cbfMapUpdateNotReady" },
   { cbfMapUpdateFailed, "cbfMapUpdateFailed" },
};

}  // namespace

ENUM_TEXT_DEFINE( CbfFecMappingUpdateStatus, "NevHelper::CbfFecMappingUpdateStatus",
                  cbfFecMappingUpdateStatusNames )

}  // namespace NevHelper

// Everything a chip-specific agent needs from the library, in one include.
#pragma once

#include "kesh/TimerTask.h"
#include "kesh/TimerWheel.h"
#include "nev/AsyncOperation.h"
#include "nev/NevAssert.h"
#include "nev/NevBaseHelper.h"
#include "zub/ActivityManager.h"
#include "zub/Attribute.h"
#include "zub/Entity.h"
#include "zub/Fleelog.h"
#include "zub/LinkQueue.h"
#include "zub/Log.h"
#include "zub/Trace.h"

#pragma once

/// Text forms of identifiers, and the parsers of values that come from options and from the
/// configuration language. Their limits are the limits that users meet.
///
/// A parser returns true for success. A null pointer in any argument is a failure. None prints. A
/// failure may leave outputs partly written: callers refuse the whole input.

#include "TarnFWUtilAddress.h"
#include "TarnFWUtilFlow.h"
#include "TarnFWUtilIdentifier.h"
#include "TarnFWUtilList.h"
#include "TarnFWUtilNumber.h"
#include "TarnFWUtilPort.h"
#include "TarnFWUtilText.h"
#include "TarnFWUtilTimeout.h"

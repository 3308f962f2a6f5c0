#pragma once

#include "ce_api.h"

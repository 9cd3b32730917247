#pragma once

// Hosts are built with the same types, so the header stands with the installed ones.
#include "VeskoEx/Automation.h"

#pragma once
// The control a host embeds: #include <kestrin/IClass.h> and link Kestrin::Widgets.
#include "control/IClass.h"

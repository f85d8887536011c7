// What every shader knows already.
#pragma once

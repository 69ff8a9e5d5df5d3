// The visibility of what the platform library offers to the host and to bundles.
#pragma once

// Everything is compiled with hidden visibility; a class or function that another module links
// carries this. Type information of such a class then exists once in the process, so an exception
// or a base class means the same thing on both sides of a bundle's border.
#define KBX_PLATFORM __attribute__((visibility("default")))

// streams.h: the project streams, as far as a declaration needs them (ofpstream.h, ifpstream.h).
#pragma once

class ofpstream;
class ifpstream;

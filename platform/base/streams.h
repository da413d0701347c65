// The project streams, as far as a declaration needs them: their contract comes with the stored field book.
#pragma once

class ofpstream;
class ifpstream;

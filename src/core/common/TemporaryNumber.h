#pragma once

namespace zdt {

// The random part of a temporary name: rand(), seeded once for the whole process. Every
// maker of temporary names draws from here, since a second seeding with the same second
// would start the sequence again and hand out a name that is still in use.
int TemporaryNumber();

} // namespace zdt

#pragma once

/**
 * Installs the translations for the user's language: the program's, the
 * plug-in's and Qt's own. The program's and the plug-in's are looked for
 * where an installed program keeps them, then where the build puts them.
 * Call once, after the application object exists.
 */
void installTranslations();

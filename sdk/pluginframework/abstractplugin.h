#pragma once

/**
 * Root of every object a plug-in hands to the host for one job (an exporter,
 * for instance). The host deletes such objects through this base.
 */
class AbstractPlugin
{
public:
    virtual ~AbstractPlugin() = default;
};

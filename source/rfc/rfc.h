/** @file
 * The codec library: base64 and quoted-printable coding with option objects.
 */
#ifndef RFC_H
#define RFC_H

#include <rfc/rfc_api.h>
#include <rfc/rfc_base.h>
#include <rfc/rfc_base_options.h>
#include <rfc/rfc_quop.h>
#include <rfc/rfc_quop_options.h>

#endif

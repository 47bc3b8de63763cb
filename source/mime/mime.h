/** @file
 * The MIME library: header-field values, entities and multipart bodies over the
 * base runtime. Start it through mimeModule() before any other call. */
#ifndef MIME_H
#define MIME_H

#include <mime/mime_api.h>
#include <mime/mime_char.h>
#include <mime/mime_content_disposition.h>
#include <mime/mime_content_id.h>
#include <mime/mime_content_transfer_encoding.h>
#include <mime/mime_content_type.h>
#include <mime/mime_decode.h>
#include <mime/mime_defect.h>
#include <mime/mime_encode.h>
#include <mime/mime_encode_flags.h>
#include <mime/mime_encoded_words.h>
#include <mime/mime_entity.h>
#include <mime/mime_entity_parse.h>
#include <mime/mime_flags.h>
#include <mime/mime_header_value.h>
#include <mime/mime_message.h>
#include <mime/mime_module.h>
#include <mime/mime_multipart.h>
#include <mime/mime_options.h>
#include <mime/mime_part.h>
#include <mime/mime_rfc2231.h>
#include <mime/mime_shf_token.h>
#include <mime/mime_shf_token_vector.h>

#endif
